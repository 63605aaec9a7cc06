#include "orv/datum/ZipReader.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tests/support/GridBytes.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using internal::ZipReader;
using test::ZipMember;

/// Bytes that deflate to something shorter, but not to nothing.
std::string Sample(size_t size) {
  std::mt19937 random(20260105);
  std::string bytes;
  for (size_t i = 0; i < size; ++i) bytes += static_cast<char>(random() % 17);
  return bytes;
}

std::string Extracted(ZipReader& zip, int index) {
  std::vector<unsigned char> bytes;
  EXPECT_EQ(internal::ZipDone, zip.ExtractToMemory(index, bytes));
  return {bytes.begin(), bytes.end()};
}

TEST(ZipReader, StoredAndDeflatedMembersComeOutWhole) {
  const test::TempFolder folder;
  const std::string large = Sample(300000), small = "abc";
  ZipReader zip;
  ASSERT_EQ(internal::ZipDone,
            zip.Open(folder.Write("a.zip", test::ZipArchive({{"dir/large.bin", large, 8, "local extra"},
                                                             {"small", small, 0, "", "a comment"},
                                                             {"stored.bin", large, 0},
                                                             {"empty", "", 0},
                                                             {"empty deflated", "", 8},
                                                             {"zeros", std::string(200000, '\0'), 8}}))));
  ASSERT_EQ(6, zip.CountFiles());
  EXPECT_EQ("dir/large.bin", zip.Name(0));
  EXPECT_EQ("small", zip.Name(1));
  EXPECT_EQ(300000u, zip.UncompressedSize(0));
  EXPECT_EQ(large, Extracted(zip, 0));
  EXPECT_EQ(small, Extracted(zip, 1));
  EXPECT_EQ(large, Extracted(zip, 2));
  EXPECT_EQ("", Extracted(zip, 3));
  EXPECT_EQ("", Extracted(zip, 4));
  EXPECT_EQ(std::string(200000, '\0'), Extracted(zip, 5));
  EXPECT_STREQ("", zip.Trouble());
}

TEST(ZipReader, AMissingFileDoesNotOpen) {
  const test::TempFolder folder;
  ZipReader zip;
  EXPECT_EQ(-2, zip.Open(folder.Path("none.zip")));
  EXPECT_EQ(-2, zip.Open(folder.Path()));
  EXPECT_EQ(0, zip.CountFiles());
}

TEST(ZipReader, AFileOf21BytesIsTooSmall) {
  const test::TempFolder folder;
  ZipReader zip;
  const std::string archive = test::ZipArchive({});
  ASSERT_EQ(22u, archive.size());
  EXPECT_EQ(internal::ZipDone, zip.Open(folder.Write("a.zip", archive)));
  EXPECT_EQ(0, zip.CountFiles());
  EXPECT_EQ(-99, zip.Open(folder.Write("b.zip", archive.substr(0, 21))));
  EXPECT_STREQ("Too small to be a valid ZIP file!", zip.Trouble());
  EXPECT_EQ(-99, zip.Open(folder.Write("c.zip", "")));
  EXPECT_STREQ("Too small to be a valid ZIP file!", zip.Trouble());
}

TEST(ZipReader, TheEndRecordIsLookedForInTheLast4096Bytes) {
  const test::TempFolder folder;
  ZipReader zip;
  const std::vector<ZipMember> members = {{"a", "text", 0}};
  EXPECT_EQ(0, zip.Open(folder.Write("a.zip", test::ZipArchive(members, std::string(4096 - 22, 'c')))));
  EXPECT_EQ("text", Extracted(zip, 0));
  EXPECT_EQ(-99, zip.Open(folder.Write("b.zip", test::ZipArchive(members, std::string(4096 - 21, 'c')))));
  EXPECT_STREQ("", zip.Trouble());
  EXPECT_EQ(-99, zip.Open(folder.Write("c.zip", std::string(30, 'c'))));
}

TEST(ZipReader, BadSignaturesAreRefused) {
  const test::TempFolder folder;
  const std::string archive = test::ZipArchive({{"a", "text", 0}});
  const size_t directory = archive.find("PK\x01\x02");
  ZipReader zip;
  EXPECT_EQ(0, zip.Open(folder.Write("a.zip", archive)));
  EXPECT_EQ(-99, zip.Open(folder.Write("b.zip", test::Patched(archive, 0, "X"))));
  EXPECT_EQ(-99, zip.Open(folder.Write("c.zip", test::Patched(archive, directory, "X"))));
  EXPECT_EQ(0, zip.CountFiles());
}

TEST(ZipReader, OffsetsAndSizesBehindTheEndAreShortReads) {
  const test::TempFolder folder;
  const std::string archive = test::ZipArchive({{"a", "text", 0}});
  const size_t directory = archive.find("PK\x01\x02");
  const std::string huge = test::Bytes().U32(0xFFFFFFFF);
  const std::string wide = test::Bytes().U16(0xFFFF);
  ZipReader zip;
  const auto open = [&](size_t at, const std::string& over) {
    return zip.Open(folder.Write("a.zip", test::Patched(archive, at, over)));
  };
  EXPECT_EQ(-3, open(archive.size() - 6, huge));   // where the directory is
  EXPECT_EQ(-3, open(archive.size() - 12, wide));  // members
  EXPECT_EQ(-3, open(directory + 20, huge));       // compressed size
  EXPECT_EQ(-3, open(directory + 28, wide));       // length of the name
  EXPECT_EQ(-3, open(directory + 42, huge));       // where the local header is
  EXPECT_EQ(-3, open(26, wide));                   // the local header's length of the name
  EXPECT_EQ(-3, open(28, wide));                   // and of its extra field
  EXPECT_EQ(0, open(directory + 30, wide));        // the last entry's extra field leads nowhere
}

TEST(ZipReader, OtherMethodsAreUnsupported) {
  const test::TempFolder folder;
  ZipReader zip;
  ASSERT_EQ(0, zip.Open(folder.Write("a.zip", test::ZipArchive({{"a", "text", 12}, {"b", "text", 0}}))));
  std::vector<unsigned char> bytes = {1};
  EXPECT_EQ(internal::ZipUnsupported, zip.ExtractToMemory(0, bytes));
  EXPECT_TRUE(bytes.empty());
  EXPECT_EQ("text", Extracted(zip, 1));
  EXPECT_EQ(internal::ZipNoSuchFile, zip.ExtractToMemory(2, bytes));
  EXPECT_EQ(internal::ZipNoSuchFile, zip.ExtractToMemory(-1, bytes));
}

TEST(ZipReader, ACrcThatDiffersFails) {
  const test::TempFolder folder;
  ZipReader zip;
  ASSERT_EQ(0, zip.Open(folder.Write("a.zip", test::ZipArchive({{"a", "text", 0, "", "", -1, 1},
                                                                {"b", "text", 8, "", "", -1, 0x80000000u},
                                                                {"c", "", 0, "", "", -1, 1},
                                                                {"d", "text", 8}}))));
  std::vector<unsigned char> bytes;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(-99, zip.ExtractToMemory(i, bytes));
    EXPECT_STREQ("CRC check failed!", zip.Trouble());
    EXPECT_TRUE(bytes.empty());
  }
  EXPECT_EQ(0, zip.ExtractToMemory(3, bytes));
  EXPECT_STREQ("", zip.Trouble());
}

TEST(ZipReader, ASizeThatIsNotTheDirectorysFails) {
  const test::TempFolder folder;
  ZipReader zip;
  const std::string text = Sample(5000);
  std::vector<ZipMember> members;
  for (const int64_t size : {0, 1, 4999, 5001, 100000}) {
    members.push_back({"a", text, 8, "", "", size});
    members.push_back({"a", text, 0, "", "", size});
  }
  ASSERT_EQ(0, zip.Open(folder.Write("a.zip", test::ZipArchive(members))));
  std::vector<unsigned char> bytes;
  for (int i = 0; i < zip.CountFiles(); ++i) {
    EXPECT_EQ(-99, zip.ExtractToMemory(i, bytes)) << i;
    EXPECT_STREQ("", zip.Trouble()) << i;
  }
}

TEST(ZipReader, HugeSizesAreRefusedBeforeAnythingIsAllocated) {
  // More than 1100 times the compressed size, and more than 1 GiB.
  const test::TempFolder folder;
  ZipReader zip;
  const std::string zeros(1000, '\0');
  const auto deflated = static_cast<int64_t>(test::Deflated(zeros).size());
  ASSERT_EQ(0, zip.Open(folder.Write(
                   "a.zip", test::ZipArchive({{"a", zeros, 8, "", "", 1100 * deflated + 1},
                                              {"b", Sample(2000000), 8, "", "", (int64_t{1} << 30) + 1},
                                              {"c", zeros, 8, "", "", 0xFFFFFFFF}}))));
  std::vector<unsigned char> bytes;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(-99, zip.ExtractToMemory(i, bytes));
    EXPECT_EQ(0u, bytes.capacity());
  }
}

TEST(ZipReader, MembersThatShareBytesAreRefused) {
  // Directory entries that all point to one member would hold any number of large ones.
  const test::TempFolder folder;
  const std::string archive = test::ZipArchive({{"a", Sample(3000), 8}, {"b", "x", 0}});
  const size_t directory = archive.find("PK\x01\x02"), second = archive.find("PK\x01\x02", directory + 1);
  ZipReader zip;
  const std::string entry = archive.substr(directory, second - directory);
  std::string shared = archive.substr(0, directory);
  for (int i = 0; i < 100; ++i) shared += entry;
  shared += test::Bytes()
                .U32(0x06054b50)
                .U32(0)
                .U16(100)
                .U16(100)
                .U32(0)
                .U32(static_cast<uint32_t>(directory))
                .U16(0);
  EXPECT_EQ(-99, zip.Open(folder.Write("a.zip", shared)));
  EXPECT_EQ(0, zip.CountFiles());
  EXPECT_EQ(0, zip.Open(folder.Write("b.zip", archive)));
}

TEST(ZipReader, AFileWrittenInPartIsDeleted) {
  // As on a full disk: the process may write files of 4096 bytes at most.
  const test::TempFolder folder;
  ZipReader zip;
  ASSERT_EQ(0, zip.Open(folder.Write("a.zip", test::ZipArchive({{"a", Sample(100000), 8}}))));
  rlimit before = {};
  ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &before));
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit = {4096, before.rlim_max};
  ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
  const int status = zip.ExtractToFile(0, folder.Path("a.bin"));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(internal::ZipWriteFailed, status);
  EXPECT_FALSE(std::filesystem::exists(folder.Path("a.bin")));
}

TEST(ZipReader, ExtractsToAFile) {
  const test::TempFolder folder;
  ZipReader zip;
  const std::string bytes = Sample(100000);
  ASSERT_EQ(
      0, zip.Open(folder.Write("a.zip", test::ZipArchive({{"a", bytes, 8}, {"b", "x", 0, "", "", -1, 1}}))));
  EXPECT_EQ(0, zip.ExtractToFile(0, folder.Path("a.bin")));
  EXPECT_EQ(bytes, folder.Read("a.bin"));
  EXPECT_EQ(-99, zip.ExtractToFile(1, folder.Path("b.bin")));
  EXPECT_FALSE(std::filesystem::exists(folder.Path("b.bin")));
  EXPECT_EQ(internal::ZipWriteFailed, zip.ExtractToFile(0, folder.Path("no/such/folder")));
  EXPECT_EQ(internal::ZipNoSuchFile, zip.ExtractToFile(7, folder.Path("c.bin")));
}

TEST(ZipReader, AnArchiveCutAnywhereGivesAStatus) {
  const test::TempFolder folder;
  const std::string archive =
      test::ZipArchive({{"a.los", Sample(300), 8}, {"b.las", Sample(90), 0}}, "comment");
  ZipReader zip;
  std::vector<unsigned char> bytes;
  for (size_t size = 0; size < archive.size(); ++size) {
    const int status = zip.Open(folder.Write("a.zip", archive.substr(0, size)));
    // The comment alone may be missing.
    EXPECT_EQ(size + 7 < archive.size(), status != 0) << size;
    // From the front, all that the directory points to is moved.
    ASSERT_TRUE(zip.Open(folder.Write("b.zip", archive.substr(size))) != 0 || size == 0) << size;
  }
}

TEST(ZipReader, AnyByteChangedGivesBytesOrAStatus) {
  const test::TempFolder folder;
  const std::string archive = test::ZipArchive({{"a.los", Sample(300), 8}, {"b.las", Sample(90), 0}});
  ZipReader zip;
  std::vector<unsigned char> bytes;
  for (size_t at = 0; at < archive.size(); ++at) {
    for (const char change : {'\x01', '\x80', '\xFF'}) {
      std::string changed = archive;
      changed[at] = static_cast<char>(changed[at] ^ change);
      if (zip.Open(folder.Write("a.zip", changed)) != 0) continue;
      for (int i = 0; i < zip.CountFiles(); ++i) {
        // What comes out has passed its CRC: it is what went in.
        if (zip.ExtractToMemory(i, bytes) != 0) continue;
        const std::string text(bytes.begin(), bytes.end());
        EXPECT_TRUE(text == Sample(300) || text == Sample(90)) << at;
      }
    }
  }
}

}  // namespace
}  // namespace orv
