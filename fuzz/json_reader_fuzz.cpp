// Fuzz target of the JSON reader. The first byte picks the code page and the chunk size; the
// rest is the text. Oracle: the buffer, 8-bit text, memory stream and a stream that hands out
// the text in small chunks give the same events and the same ending; valid UTF-8 read as UTF-16
// text gives them too; events follow the grammar of the contract (starts and ends balance, a
// member holds one value). Any exception but the reader's own is a finding.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "vnxml/common/stream.h"
#include "json_event_recorder.h"
#include "vnxml/json_reader.h"

namespace {

using fuzzjson::Finding;
using fuzzjson::Recorder;

// A stream that hands out at most Chunk bytes per read, and may not know its size.
class ChunkStream : public vn::TStream {
 public:
  ChunkStream(const std::string& AText, size_t AChunk, bool AKnowsSize)
      : Text(AText), Chunk(AChunk), KnowsSize(AKnowsSize) {}
  vn::Int64 Read(void* ABuffer, vn::Int64 ACount) override {
    const size_t n = std::min<size_t>({static_cast<size_t>(ACount), Chunk, Text.size() - Pos});
    std::memcpy(ABuffer, Text.data() + Pos, n);
    Pos += n;
    return static_cast<vn::Int64>(n);
  }
  vn::Int64 Write(const void*, vn::Int64) override { return 0; }
  vn::Int64 Seek(vn::Int64 AOffset, vn::TSeekOrigin AOrigin) override {
    if (AOrigin == vn::soCurrent && AOffset == 0) return static_cast<vn::Int64>(Pos);
    if (AOrigin == vn::soEnd) return KnowsSize ? static_cast<vn::Int64>(Text.size()) : 0;
    return static_cast<vn::Int64>(Pos);
  }
  vn::Int64 GetSize() override { return KnowsSize ? static_cast<vn::Int64>(Text.size()) : 0; }

 private:
  const std::string& Text;
  size_t Chunk, Pos = 0;
  bool KnowsSize;
};

template <class F>
std::u16string Run(F&& AParse) {
  Recorder rec;
  vn::TVnJSONReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnJSONContentHandler>(&rec));
  reader.SetErrorHandler(vn::IPtr<vn::IVnJSONErrorHandler>(&rec));
  try {
    AParse(reader);
    if (!rec.Ended || !rec.Open.empty()) Finding("a parse ended without EndDocument");
  } catch (const vn::EVnJSONParseError&) {
  } catch (const vn::EVnTextParserEOF&) {
    rec.Trace += u"(eof)";
  } catch (const vn::Exception& e) {
    // The encoding failure comes before any event; nothing else may escape.
    if (e.Message() != vn::_cVnJSONEncodingNotSupported || !rec.Trace.empty()) Finding("foreign exception");
    return u"(encoding)";
  }
  if (rec.Ended && rec.Failed) Finding("EndDocument after a failure");
  return rec.Trace;
}

const vn::Word kCodePages[] = {0, 65001, 1252, 1200};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t mode = data[0];
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  const vn::Word cp = kCodePages[mode & 3];
  const size_t chunk = 1 + ((mode >> 2) & 15);

  const std::u16string whole = Run([&](vn::TVnJSONReader& r) {
    r.ParseBuffer(text.data(), static_cast<vn::Cardinal>(text.size()), cp, u"");
  });
  const auto same = [&](const std::u16string& AOther, const char* AWhat) {
    if (AOther != whole) Finding(AWhat);
  };
  same(Run([&](vn::TVnJSONReader& r) { r.Parse(std::string_view(text), cp, u""); }), "8-bit text differs");
  same(Run([&](vn::TVnJSONReader& r) {
         ChunkStream s(text, chunk, (mode & 64) != 0);
         r.ParseStream(&s, cp, u"");
       }),
       "chunked stream differs");
  const vn::UnicodeString wide = fuzzjson::Utf16Twin(text, cp, whole == u"(encoding)");
  if (!wide.empty()) same(Run([&](vn::TVnJSONReader& r) { r.Parse(wide, u""); }), "UTF-16 text differs");
  return 0;
}
