#include "tools/orv/LineSource.h"

#include <fmt/core.h>

#include <algorithm>
#include <string_view>

#include "tools/orv/Command.h"

namespace orv::tool {

namespace {

/// What data begins with that people give for text, and what is to be done with it.
struct Signature {
  std::string_view bytes;
  const char* advice;
};
using namespace std::string_view_literals;
constexpr Signature kSignatures[] = {
    {"\x1F\x8B"sv, "is compressed (gzip): unpack it first, as in gunzip -c FILE | orv convert ..."},
    {"PK\x03\x04"sv, "is a zip archive (or a spreadsheet): unpack it, or save the sheet as CSV"},
    {"\xFF\xFE"sv,
     "is UTF-16 text: make it UTF-8 first, as in iconv -f UTF-16 -t UTF-8 FILE | orv convert ..."},
    {"\xFE\xFF"sv,
     "is UTF-16 text: make it UTF-8 first, as in iconv -f UTF-16 -t UTF-8 FILE | orv convert ..."},
    {"\0\0\x27\x0A"sv, "is a shapefile: give its name, FILE.shp, and not its content"},
    {"{"sv, "is JSON, not lines of points: give --format geojson when it is GeoJSON"},
    {"SQLite format 3\0"sv, "is a database (GeoPackage?): give its name, FILE.gpkg, or --format GPKG"},
};

}  // namespace

void LineSource::CheckText(const ByteBuffer& block) const {
  const std::string_view text = block.View();
  for (const Signature& signature : kSignatures) {
    if (text.starts_with(signature.bytes))
      throw UsageError(fmt::format("{} {}", m_File.Title(), signature.advice));
  }
  if (const size_t zero = text.find('\0'); zero != std::string_view::npos) {
    throw UsageError(fmt::format(
        "{} is not text (a zero byte in line {}); for pairs of 64-bit numbers give --binary", m_File.Title(),
        std::count(text.begin(), text.begin() + static_cast<ptrdiff_t>(zero), '\n') + 1));
  }
}

bool LineSource::Next(ByteBuffer& block) {
  block.Clear();
  block.Append(m_Rest.View());
  m_Rest.Clear();
  size_t searched = 0, wholeLines = 0;
  for (;;) {
    const size_t room = std::max(kBlockBytes, block.Size() + kBlockBytes / 2) - block.Size();
    const size_t got = m_File.Read(block.Room(room), room);
    block.Grow(got);
    const size_t feed = block.View().substr(searched).rfind('\n');
    if (feed != std::string_view::npos) wholeLines = searched + feed + 1;
    searched = block.Size();
    if (got == 0) {
      wholeLines = block.Size();
      break;
    }
    if (wholeLines > 0 && (block.Size() >= kBlockBytes || !m_File.IsReady())) break;
    if (block.Size() - wholeLines > kLongestLine) {
      if (!m_bBegun) CheckText(block);
      throw UsageError(
          fmt::format("the line that begins at byte {} of {} is longer than {} MiB: each point needs a line",
                      m_Bytes + wholeLines, m_File.Title(), kLongestLine >> 20));
    }
  }
  m_Rest.Append(block.View().substr(wholeLines));
  block.Shorten(wholeLines);
  if (wholeLines == 0) return false;
  if (!m_bBegun) CheckText(block);
  m_bBegun = true;
  m_Bytes += wholeLines;
  return true;
}

}  // namespace orv::tool
