// GridBytes.h: NADCON, NTv2 and zip files made by tests, byte for byte.
#pragma once

#include <zlib.h>

#include <bit>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace orv::test {

/// Little-endian bytes.
class Bytes {
 public:
  Bytes& U16(uint32_t value) { return Unsigned(value, 2); }
  Bytes& U32(uint32_t value) { return Unsigned(value, 4); }
  Bytes& I32(int32_t value) { return U32(static_cast<uint32_t>(value)); }
  Bytes& F32(float value) { return U32(std::bit_cast<uint32_t>(value)); }
  Bytes& F64(double value) { return Unsigned(std::bit_cast<uint64_t>(value), 8); }
  /// Padded with `fill`, or cut, to the size.
  Bytes& Text(std::string text, size_t size, char fill = ' ') {
    text.resize(size, fill);
    return Raw(text);
  }
  Bytes& Raw(const std::string& bytes) {
    m_Bytes += bytes;
    return *this;
  }
  operator const std::string&() const { return m_Bytes; }
  size_t Size() const { return m_Bytes.size(); }

 private:
  Bytes& Unsigned(uint64_t value, int size) {
    for (int i = 0; i < size; ++i) m_Bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    return *this;
  }
  std::string m_Bytes;
};

/// Puts other bytes over those at an offset.
inline std::string Patched(std::string bytes, size_t at, const std::string& over) {
  return bytes.replace(at, over.size(), over);
}

// ---- NADCON ----------------------------------------------------------------------------------------------

struct NadconLayout {
  int columns = 24;
  int rows = 3;
  float xMin = -100.0F;
  float dx = 0.5F;
  float yMin = 40.0F;
  float dy = 0.25F;
};

/// A .los or .las file; `value` gives the node's arc-seconds by column and row, counted from 1.  The words that
/// are no data hold a number that would show.
inline std::string NadconFile(const NadconLayout& g, const std::function<float(int, int)>& value) {
  const size_t record = 4 * (static_cast<size_t>(g.columns) + 1);
  Bytes header;
  header.Text("NADCON EXTRACTED REGION", 56).Text("NADGRD", 8).I32(g.columns).I32(g.rows).I32(1);
  header.F32(g.xMin).F32(g.dx).F32(g.yMin).F32(g.dy).F32(0.0F);
  if (header.Size() > record) {
    throw std::invalid_argument("a NADCON grid of fewer than 23 columns does not hold its header");
  }
  Bytes file;
  file.Text(header, record, '\0');
  for (int row = 1; row <= g.rows; ++row) {
    file.F32(9.0e9F);
    for (int col = 1; col <= g.columns; ++col) file.F32(value(col, row));
  }
  return file;
}

// ---- NTv2 ------------------------------------------------------------------------------------------------

struct NTv2Shift {
  float lat;  ///< arc-seconds, positive north
  float lon;  ///< arc-seconds, positive WEST, as in the file
};

/// Seconds, longitudes positive WEST as in the file.
struct NTv2Layout {
  std::string name = "MAIN";
  std::string parent = "NONE";
  double south = 0, north = 0, east = 0, west = 0, latInc = 0, lonInc = 0;
  int columns = 0, rows = 0;
  std::function<NTv2Shift(int, int)> shift;  ///< by column from the WEST and row from the south, from 0
};

inline std::string NTv2Header(int subGrids) {
  Bytes out;
  out.Text("NUM_OREC", 8).I32(11).I32(0).Text("NUM_SREC", 8).I32(11).I32(0);
  out.Text("NUM_FILE", 8).I32(subGrids).I32(0).Text("GS_TYPE", 8).Text("SECONDS", 8);
  for (const char* key : {"VERSION", "SYSTEM_F", "SYSTEM_T", "MAJOR_F", "MINOR_F", "MAJOR_T", "MINOR_T"}) {
    out.Text(key, 8).Text("x", 8);
  }
  return out;
}

inline std::string NTv2SubGridBytes(const NTv2Layout& g) {
  Bytes out;
  out.Text("SUB_NAME", 8).Text(g.name, 8).Text("PARENT", 8).Text(g.parent, 8);
  out.Text("CREATED", 8).Text("", 8).Text("UPDATED", 8).Text("", 8);
  out.Text("S_LAT", 8).F64(g.south).Text("N_LAT", 8).F64(g.north);
  out.Text("E_LONG", 8).F64(g.east).Text("W_LONG", 8).F64(g.west);
  out.Text("LAT_INC", 8).F64(g.latInc).Text("LONG_INC", 8).F64(g.lonInc);
  out.Text("GS_COUNT", 8).I32(g.columns * g.rows).I32(0);
  for (int row = 0; row < g.rows; ++row) {
    for (int col = g.columns - 1; col >= 0; --col) {  // from east to west
      const NTv2Shift shift = g.shift(col, row);
      out.F32(shift.lat).F32(shift.lon).F32(9.0e9F).F32(9.0e9F);
    }
  }
  return out;
}

inline std::string NTv2File(const std::vector<NTv2Layout>& grids) {
  std::string file = NTv2Header(static_cast<int>(grids.size()));
  for (const NTv2Layout& grid : grids) file += NTv2SubGridBytes(grid);
  return file;
}

/// A grid given by its western and southern edge in degrees, east-positive, and its spacing.
inline NTv2Layout NTv2Box(const std::string& name, const std::string& parent, double west, double south,
                          double step, int columns, int rows, std::function<NTv2Shift(int, int)> shift) {
  NTv2Layout g;
  g.name = name;
  g.parent = parent;
  g.columns = columns;
  g.rows = rows;
  g.latInc = g.lonInc = step * 3600;
  g.south = south * 3600;
  g.north = g.south + (rows - 1) * g.latInc;
  g.west = -west * 3600;
  g.east = g.west - (columns - 1) * g.lonInc;
  g.shift = std::move(shift);
  return g;
}

// ---- zip -------------------------------------------------------------------------------------------------

struct ZipMember {
  std::string name;
  std::string bytes;
  int method = 8;
  std::string extra = {};        ///< of the local header; the directory has another
  std::string comment = {};      ///< of the directory entry
  int64_t sizeInDirectory = -1;  ///< when not the true one
  uint32_t crcChange = 0;        ///< what the CRC-32 is off by
};

/// Raw deflate data.
inline std::string Deflated(const std::string& bytes) {
  z_stream stream = {};
  if (deflateInit2(&stream, 9, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) != Z_OK) throw std::bad_alloc();
  std::string out(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  const int result = deflate(&stream, Z_FINISH);
  out.resize(out.size() - stream.avail_out);
  deflateEnd(&stream);
  if (result != Z_STREAM_END) throw std::runtime_error("deflate failed");
  return out;
}

inline std::string ZipArchive(const std::vector<ZipMember>& members, const std::string& comment = "") {
  Bytes archive, directory;
  for (const ZipMember& member : members) {
    const std::string data = member.method == 8 ? Deflated(member.bytes) : member.bytes;
    const auto at = static_cast<uint32_t>(archive.Size());
    const auto crc = static_cast<uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(member.bytes.data()),
                                                 static_cast<uInt>(member.bytes.size())));
    const auto size = static_cast<uint32_t>(
        member.sizeInDirectory >= 0 ? member.sizeInDirectory : static_cast<int64_t>(member.bytes.size()));
    const auto nameSize = static_cast<uint32_t>(member.name.size());
    const auto method = static_cast<uint32_t>(member.method);
    const auto dataSize = static_cast<uint32_t>(data.size());
    // The local header's sizes and CRC may be 0 (written behind the data); readers take the directory's.
    archive.U32(0x04034b50).U16(20).U16(0).U16(method).U32(0).U32(0).U32(0).U32(0);
    archive.U16(nameSize).U16(static_cast<uint32_t>(member.extra.size()));
    archive.Raw(member.name).Raw(member.extra).Raw(data);
    directory.U32(0x02014b50).U16(20).U16(20).U16(0).U16(method).U32(0).U32(crc ^ member.crcChange);
    directory.U32(dataSize).U32(size).U16(nameSize).U16(3).U16(static_cast<uint32_t>(member.comment.size()));
    directory.U16(0).U16(0).U32(0).U32(at).Raw(member.name).Raw("xyz").Raw(member.comment);
  }
  const auto directoryAt = static_cast<uint32_t>(archive.Size());
  const auto count = static_cast<uint32_t>(members.size());
  archive.Raw(directory);
  archive.U32(0x06054b50).U16(0).U16(0).U16(count).U16(count).U32(static_cast<uint32_t>(directory.Size()));
  archive.U32(directoryAt).U16(static_cast<uint32_t>(comment.size())).Raw(comment);
  return archive;
}

}  // namespace orv::test
