// Pipeline.h: blocks read, worked on by several threads and written in the order in which they were read.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orv::tool {

/// The calling thread reads, `workers` threads work, one more writes.  With one worker the calling thread does all of it.
///
/// There are twice as many blocks as workers, and two; they are used again and again, which bounds the memory.
///
/// read   fills a block; false at the end.
/// work   is called by several threads at once, each with a block of its own.
/// write  gets the blocks in the order in which they were read.
///
/// A failure of any of them ends the run and is thrown by Run.  What was read before it is still written, when
/// reading or working fails.
template <class Block>
class Pipeline {
 public:
  std::function<bool(Block&)> read;
  std::function<void(Block&)> work;
  std::function<void(Block&)> write;

  void Run(size_t workers) {
    if (workers <= 1) {
      Block block;
      while (read(block)) {
        work(block);
        write(block);
      }
      return;
    }
    m_Slots = std::vector<Slot>(2 * workers + 2);
    std::vector<std::thread> threads;
    try {
      threads.emplace_back([this] { WriteAll(); });
      for (size_t i = 0; i < workers; ++i) threads.emplace_back([this] { Work(); });
      ReadAll();
    } catch (...) {
      Fail(std::current_exception());
    }
    for (std::thread& thread : threads) thread.join();
    if (m_Failure) std::rethrow_exception(m_Failure);
  }

 private:
  enum State { Free, Read, Taken, Done };
  struct Slot {
    State state = Free;
    Block block;
    std::exception_ptr failure;
  };
  using Lock = std::unique_lock<std::mutex>;

  /// Ends the run; the first failure counts.
  void Fail(std::exception_ptr failure) {
    const Lock lock(m_Mutex);
    if (!m_Failure) m_Failure = failure;
    m_bStopped = true;
    m_Changed.notify_all();
  }

  void ReadAll() {
    for (size_t number = 0;; ++number) {
      Slot& slot = m_Slots[number % m_Slots.size()];
      {
        Lock lock(m_Mutex);
        m_Changed.wait(lock, [&] { return m_bStopped || slot.state == Free; });
        if (m_bStopped) return;
      }
      bool bMore = false;
      std::exception_ptr failure;
      try {
        bMore = read(slot.block);
      } catch (...) {
        failure = std::current_exception();
      }
      const Lock lock(m_Mutex);
      if (bMore) {
        slot.state = Read;
        m_ReadCount = number + 1;
      } else {
        m_ReadFailure = failure;
        m_bEnd = true;
      }
      m_Changed.notify_all();
      if (!bMore) return;
    }
  }

  void Work() {
    for (;;) {
      Slot* slot = nullptr;
      {
        Lock lock(m_Mutex);
        m_Changed.wait(lock, [&] { return m_bStopped || m_TakenCount < m_ReadCount || m_bEnd; });
        if (m_bStopped || m_TakenCount == m_ReadCount) return;
        slot = &m_Slots[m_TakenCount++ % m_Slots.size()];
        slot->state = Taken;
      }
      try {
        work(slot->block);
      } catch (...) {
        slot->failure = std::current_exception();
      }
      const Lock lock(m_Mutex);
      slot->state = Done;
      m_Changed.notify_all();
    }
  }

  void WriteAll() {
    for (size_t number = 0;; ++number) {
      Slot& slot = m_Slots[number % m_Slots.size()];
      {
        Lock lock(m_Mutex);
        m_Changed.wait(lock,
                       [&] { return m_bStopped || slot.state == Done || (m_bEnd && number == m_ReadCount); });
        if (m_bStopped) return;
        if (m_bEnd && number == m_ReadCount) {
          m_Failure = m_ReadFailure;
          return;
        }
      }
      try {
        if (slot.failure) std::rethrow_exception(slot.failure);
        write(slot.block);
      } catch (...) {
        Fail(std::current_exception());
        return;
      }
      const Lock lock(m_Mutex);
      slot.state = Free;
      m_Changed.notify_all();
    }
  }

  std::vector<Slot> m_Slots;
  std::mutex m_Mutex;
  std::condition_variable m_Changed;
  size_t m_ReadCount = 0;   ///< blocks read
  size_t m_TakenCount = 0;  ///< blocks that a worker has taken
  bool m_bEnd = false;      ///< nothing more will be read
  bool m_bStopped = false;
  std::exception_ptr m_ReadFailure;
  std::exception_ptr m_Failure;
};

}  // namespace orv::tool
