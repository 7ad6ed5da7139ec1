// Fuzz target of the XML reader. The first byte picks the code page, the single-root check and
// whether the file entry point runs too; the rest is the text. Every entry point must tell the
// same story of the same bytes: the buffer, the 8-bit string, a memory stream, a stream that
// hands its bytes out a few at a time and lies about its size, the UTF-16 string (for UTF-16LE
// text) and the file (for text without a byte-order mark, against a buffer with no code page).
// Paired events balance; elements can't (end tags are never matched and open elements are
// left open), but once the element count is back at zero a single-root parse starts no other.
// A failure is the reader's own exception, told to FatalError.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/sax.h"

namespace {
using SV = std::u16string_view;

// Writes every event into one text, so that two parses compare as two strings.
class Recorder : public vn::TVnObject,
                 public vn::IVnSAXContentHandler,
                 public vn::IVnSAXLexicalHandler,
                 public vn::IVnSAXErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnSAXContentHandler, vn::IVnSAXLexicalHandler, vn::IVnSAXErrorHandler)
 public:
  std::u16string Log;
  bool SingleRoot = true;
  long Depth = 0;
  bool RootClosed = false;
  long Mappings = 0;
  bool InCData = false;
  bool InDTD = false;
  bool Ended = false;

  void SetDocumentLocator(vn::IVnSAXLocator*) override {}
  void StartDocument() override { Put(u"D"); }
  void EndDocument() override {
    Put(u"d");
    Ended = true;
  }
  void StartElement(SV AURI, SV ALocal, SV AQName, vn::IVnSAXAttributes* AAttrs) override {
    if (RootClosed && SingleRoot) Fail("a second root element");
    RootClosed = ++Depth == 0;
    Put(u"S", AURI, ALocal, AQName);
    for (vn::Integer i = 0; AAttrs && i < AAttrs->Count(); ++i)
      Put(u"A", AAttrs->GetURI(i), AAttrs->GetQName(i), AAttrs->GetValue(i));
  }
  void EndElement(SV AURI, SV ALocal, SV AQName) override {
    RootClosed = --Depth == 0;
    Put(u"E", AURI, ALocal, AQName);
  }
  void Characters(SV AText) override { Put(u"T", AText); }
  void IgnorableWhitespace(SV AText) override { Put(u"W", AText); }
  void ProcessingInstruction(SV ATarget, SV AData) override { Put(u"P", ATarget, AData); }
  void SkippedEntity(SV AName) override { Put(u"K", AName); }
  void StartPrefixMapping(SV APrefix, SV AURI) override {
    ++Mappings;
    Put(u"M", APrefix, AURI);
  }
  void EndPrefixMapping(SV APrefix) override {
    if (--Mappings < 0) Fail("a prefix mapping ends that never started");
    Put(u"m", APrefix);
  }
  void Comment(SV AText) override { Put(u"C", AText); }
  void StartCDATA() override { Toggle(InCData, true, u"["); }
  void EndCDATA() override { Toggle(InCData, false, u"]"); }
  void StartDTD() override { Toggle(InDTD, true, u"<"); }
  void EndDTD() override { Toggle(InDTD, false, u">"); }
  void StartEntity(SV AName) override { Put(u"N", AName); }
  void EndEntity(SV AName) override { Put(u"n", AName); }
  void Warning(vn::IVnSAXLocator*, SV AText) override { Put(u"w", AText); }
  void Error(vn::IVnSAXLocator*, SV AText) override { Put(u"e", AText); }
  void FatalError(vn::IVnSAXLocator* ALocator, SV AText) override {
    const std::u16string where = vn::Utf8ToUnicode(std::to_string(ALocator->GetLineNr()) + ":" +
                                                   std::to_string(ALocator->GetColNr()));
    Put(u"F", AText, where);
  }

  static void Fail(const char* AWhat) {
    std::fprintf(stderr, "sax oracle: %s\n", AWhat);
    std::abort();
  }

 private:
  void Toggle(bool& AOpen, bool AStart, SV AKind) {
    if (AOpen == AStart) Fail("a start or end of CDATA or DTD out of turn");
    AOpen = AStart;
    Put(AKind);
  }
  template <class... T>
  void Put(SV AKind, T... AParts) {
    Log += AKind;
    ((Log += u'\x1F', Log += AParts), ...);
    Log += u'\x1E';
  }
};

// A stream that is not a memory stream (so the scanner copies it), hands out at most a few
// bytes per read and reports less than it holds, so the scanner's buffer has to grow.
class TrickleStream : public vn::TStream {
 public:
  TrickleStream(std::string_view AData, size_t AStep) : FData(AData), FStep(AStep) {}
  vn::Int64 Read(void* ABuffer, vn::Int64 ACount) override {
    size_t n = std::min({static_cast<size_t>(ACount), FStep, FData.size() - FPos});
    std::copy_n(FData.data() + FPos, n, static_cast<char*>(ABuffer));
    FPos += n;
    return static_cast<vn::Int64>(n);
  }
  vn::Int64 Write(const void*, vn::Int64) override { return 0; }
  vn::Int64 Seek(vn::Int64 AOffset, vn::TSeekOrigin AOrigin) override {
    if (AOrigin == vn::soCurrent && AOffset == 0) return static_cast<vn::Int64>(FPos);
    return 0;  // the start, the end and moves are not this stream's business
  }
  vn::Int64 GetSize() override { return static_cast<vn::Int64>(FData.size() / 3 + FPos); }

 private:
  std::string_view FData;
  size_t FStep;
  size_t FPos = 0;
};

const vn::Word kCodePages[] = {0, 65001, 1200, 1201, 28591, 1252, 12000, 932};

template <class ParseFn>
std::u16string Run(bool ASingleRoot, ParseFn AParse) {
  vn::IPtr<Recorder> rec(new Recorder);
  vn::TVnSAXXMLReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(rec.Get()));
  reader.SetLexicalHandler(vn::IPtr<vn::IVnSAXLexicalHandler>(rec.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnSAXErrorHandler>(rec.Get()));
  reader.SetCheckSingleRootElm(ASingleRoot);
  rec->SingleRoot = ASingleRoot;
  bool failed = false;
  try {
    AParse(reader);
  } catch (const vn::EVnException& e) {
    failed = true;
    // Once the document has started, the reader tells its error handler before it raises; an
    // unknown declared encoding fails earlier, while the scanner is made.
    const bool started = !rec->Log.empty();
    if (started && rec->Log.find(u"F\x1F" + e.Message()) == std::u16string::npos)
      Recorder::Fail("a failure FatalError never heard");
    rec->Log += u"!" + e.Message() + vn::Utf8ToUnicode(std::to_string(e.GetCode()));
  }
  if (!failed && (rec->InCData || rec->InDTD || !rec->Ended)) Recorder::Fail("a parse ended with a pair open");
  return rec->Log;
}

void Same(const std::u16string& A, const std::u16string& B, const char* AWhich) {
  if (A != B) {
    std::fprintf(stderr, "entry points disagree: %s\n%s\n----\n%s\n", AWhich, vn::UnicodeToUtf8(A).c_str(),
                 vn::UnicodeToUtf8(B).c_str());
    std::abort();
  }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  if (ASize == 0) return 0;
  const uint8_t mode = AData[0];
  const std::string text(reinterpret_cast<const char*>(AData + 1), ASize - 1);
  const vn::Word cp = kCodePages[mode & 7];
  const bool singleRoot = (mode & 8) == 0;
  const size_t step = 1 + ((mode >> 4) & 3) * 5;

  const std::u16string whole = Run(singleRoot, [&](vn::TVnSAXXMLReader& r) {
    r.ParseBuffer(text.data(), static_cast<vn::Int64>(text.size()), cp, u"fuzz");
  });
  Same(whole, Run(singleRoot, [&](vn::TVnSAXXMLReader& r) { r.Parse(std::string_view(text), cp, u"fuzz"); }),
       "buffer / 8-bit string");
  Same(whole, Run(singleRoot, [&](vn::TVnSAXXMLReader& r) {
         vn::TMemoryStream stream;
         stream.WriteBuffer(text.data(), static_cast<vn::Int64>(text.size()));
         stream.SetPosition(0);
         r.ParseStream(&stream, cp, u"fuzz");
       }),
       "buffer / memory stream");
  Same(whole, Run(singleRoot, [&](vn::TVnSAXXMLReader& r) {
         TrickleStream stream(text, step);
         r.ParseStream(&stream, cp, u"fuzz");
       }),
       "buffer / stream in chunks");
  if (cp == 1200) {
    std::u16string units(text.size() / 2, u'\0');
    std::copy_n(text.data(), units.size() * 2, reinterpret_cast<char*>(units.data()));
    const std::u16string even = Run(singleRoot, [&](vn::TVnSAXXMLReader& r) {
      r.ParseBuffer(text.data(), static_cast<vn::Int64>(units.size() * 2), cp, u"fuzz");
    });
    Same(even, Run(singleRoot, [&](vn::TVnSAXXMLReader& r) { r.Parse(SV(units), u"fuzz"); }),
         "UTF-16 buffer / UTF-16 string");
  }
  const auto first = static_cast<unsigned char>(text.empty() ? 0 : text[0]);
  if ((mode & 0x40) && first != 0xEF && first != 0xFE && first != 0xFF && first != 0) {
    const std::string path = "/tmp/sax_reader_fuzz_" + std::to_string(getpid());
    std::ofstream(path, std::ios::binary) << text;
    const std::u16string plain = Run(singleRoot, [&](vn::TVnSAXXMLReader& r) {
      r.ParseBuffer(text.data(), static_cast<vn::Int64>(text.size()), 0, u"fuzz");
    });
    Same(plain, Run(singleRoot, [&](vn::TVnSAXXMLReader& r) {
           r.ParseFile(vn::Utf8ToUnicode(path), vn::fmOpenRead, u"fuzz");
         }),
         "buffer / file");
    std::remove(path.c_str());
  }
  return 0;
}
