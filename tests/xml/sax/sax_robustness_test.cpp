// Depth, breadth and hostile input: the reader ends normally or with its own exception, never
// anything else, and never exhausts the stack.
#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include "vnxml/common/stream.h"
#include "support/sax_handlers.h"
#include "vnxml/sax.h"

using namespace vn;

namespace {

// Counts events without keeping them.
struct Counter : test::NullSaxHandler {
  int64_t Starts = 0, Ends = 0, Other = 0;
  bool Ended = false;
  void Characters(SV) override { ++Other; }
  void EndDocument() override { Ended = true; }
  void EndElement(SV, SV, SV) override { ++Ends; }
  void EndPrefixMapping(SV) override { ++Other; }
  void IgnorableWhitespace(SV) override { ++Other; }
  void ProcessingInstruction(SV, SV) override { ++Other; }
  void StartElement(SV, SV, SV, IVnSAXAttributes* a) override {
    ++Starts;
    // Touch every record, so that a dangling one shows under the sanitizers.
    for (auto* r = a->FirstAttribute(); r; r = r->Next) Other += static_cast<int64_t>(r->Value.size() > 0);
  }
  void StartPrefixMapping(SV, SV) override { ++Other; }
  void Comment(SV) override { ++Other; }
  void FatalError(IVnSAXLocator* loc, SV) override {
    // The locator must answer sensibly from within the failure path.
    EXPECT_GE(loc->GetLineNr(), 1);
    EXPECT_GE(loc->GetColNr(), 1);
  }
};

struct CountingReader {
  TVnSAXXMLReader Reader;
  IPtr<Counter> C{new Counter};
  explicit CountingReader(bool ACheck = true) {
    Reader.SetContentHandler(IPtr<IVnSAXContentHandler>(C.Get()));
    Reader.SetErrorHandler(IPtr<IVnSAXErrorHandler>(C.Get()));
    Reader.SetLexicalHandler(IPtr<IVnSAXLexicalHandler>(C.Get()));
    Reader.SetCheckSingleRootElm(ACheck);
  }
};

std::string Repeat(std::string_view s, size_t n) {
  std::string out;
  out.reserve(s.size() * n);
  for (size_t i = 0; i < n; ++i) out += s;
  return out;
}

}  // namespace

TEST(SaxRobustness, MillionElementsAndEveryConformanceFile) {
  // Side by side only without the single-root check.
  for (const auto& [text, check] : {std::pair{Repeat("<a x='1'/>\n", 1000000), false},
                                    {Repeat("<a>", 1000000) + "x" + Repeat("</a>", 1000000), true}}) {
    CountingReader r(check);
    r.Reader.ParseBuffer(text.data(), static_cast<Int64>(text.size()), 0, u"");
    EXPECT_EQ((std::tuple{r.C->Starts, r.C->Ends, r.C->Ended}), std::tuple(1000000, 1000000, true));
  }
  // The same depth with a namespace declared on every level.
  std::string ns = Repeat("<p:a xmlns:p='u'>", 100000) + Repeat("</p:a>", 100000);
  CountingReader n;
  n.Reader.ParseBuffer(ns.data(), static_cast<Int64>(ns.size()), 0, u"");
  EXPECT_EQ((std::tuple{n.C->Ends, n.Reader.GetNamespaceList().Count()}), std::tuple(100000, 0));

  // Each file, with and without the single-root check: a normal end, or the reader's own
  // exception family (the scanner's end of text, or an encoding the text names and nobody knows).
  size_t files = 0, accepted = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(VNXML_CORPORA_DIR "/conformance")) {
    if (!entry.is_regular_file()) continue;
    ++files;
    for (bool check : {true, false}) {
      CountingReader r(check);
      try {
        r.Reader.ParseFile(entry.path().u16string(), fmOpenRead | fmShareDenyNone, u"");
        accepted += check;
      } catch (const EVnException&) {
      } catch (const std::exception& e) {
        ADD_FAILURE() << entry.path() << ": " << e.what();
      }
    }
  }
  EXPECT_GT(files, 1500u);
  EXPECT_GT(accepted, 500u);
}
