// The fast road of a document load: the reading loop calls this builder directly, which writes
// one record per value and member and copies raw text into one block, all in a pool of the
// load; the document gets one root node that opens into nodes on first access. Every step
// mirrors what TVnJSONHandler does through the node operations, so both roads leave the same
// tree, also after a failure (the open levels are closed as they stand).
#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "json/doc_load.h"
#include "json/doc_messages.h"
#include "json/doc_plain.h"
#include "json/doc_store.h"
#include "json/json_read_loop.h"
#include "vnxml/json_handler.h"

namespace vn::detail {

class JSONTreeBuilder {
 public:
  JSONTreeBuilder(TVnJSONDocument& ADoc, TVnJSONTextParser& AParser, NodePool& APool, size_t ATextHint)
      : FDoc(ADoc),
        FParser(AParser),
        FPool(APool),
        FUtf8(AParser.GetCharacterSetType() == csUTF8),
        FStore(new JSONStore(FUtf8 ? 1 : 2)) {
    // Raw text is never longer than the input in code units: one block of that size is seldom
    // outgrown, and the pages it never writes cost nothing.
    FStore->ReserveText(std::max<size_t>(ATextHint, 64));
  }
  ~JSONTreeBuilder() { FStore->Release(); }
  JSONTreeBuilder(const JSONTreeBuilder&) = delete;
  JSONTreeBuilder& operator=(const JSONTreeBuilder&) = delete;

  void StartDocument() {}
  void EndDocument() {}
  void StartObject() { Open(JSONNodeClass::Object); }
  void StartArray() { Open(JSONNodeClass::Array); }
  void EndObject() { Close(); }
  void EndArray() { Close(); }
  void EndMember() { Close(); }

  template <class U>
  void StartMember(std::basic_string_view<U> AName) {
    if (FOpen.empty() || FOpen.back().Class != JSONNodeClass::Object)
      throw Exception(UnicodeString(cJSONInvalidObjectType));
    ++FOpen.back().Count;
    const uint32_t index = Add(JSONNodeClass::Member);
    JSONRec& rec = At(index);
    Copy(rec, AName);
    rec.Plain = IsPlain(TextOf(rec), false) ? JSONText::kPlainYes : JSONText::kPlainNo;
    FOpen.push_back({index, 0, JSONNodeClass::Member});
  }

  template <class U>
  void Value(TVnJSONSimpleDataType AKind, std::basic_string_view<U> AText) {
    Level& parent = ValueParent();
    ++parent.Count;
    // Made before the text is checked, as the handler's road does: an array gives its values
    // their kind at once, a member's value gets it with the text.
    const bool inArray = parent.Class == JSONNodeClass::Array;
    const uint32_t index = Add(JSONNodeClass::Simple);
    At(index).Type = inArray ? static_cast<uint8_t>(AKind) : static_cast<uint8_t>(jdtNull);
    if (AKind == jdtNumber) {
      // The reader hands over a run of "+-.0123456789Ee" only: plain, nothing to decode.
      Copy(At(index), AText);
      At(index).Plain = JSONText::kPlainYes;
    } else if (AKind == jdtString) {
      // Plain text holds only the escapes of "\"\\/bfnrt", which decode without fail: only
      // other text needs the decoder's check.
      JSONRec probe{};
      Copy(probe, AText);
      const bool plain = IsPlain(TextOf(probe), true);
      if (!plain && NeedsCheck(AText)) {
        std::u16string_view wide = SpanView(FParser, AText, FBuffer);
        CheckJSONText(wide, AKind);
      }
      JSONRec& rec = At(index);
      rec.Text = probe.Text;
      rec.Length = probe.Length;
      rec.Flags = probe.Flags;
      rec.Plain = plain ? JSONText::kPlainYes : JSONText::kPlainNo;
    } else {
      // The reader matched the letters, so the text is the literal itself: no copy is kept.
      JSONRec& rec = At(index);
      rec.Flags = JSONRec::kLiteral;
      rec.Length = AKind == jdtNull || AText.size() == 4 ? 4 : 5;
      rec.Plain = JSONText::kPlainYes;
    }
    At(index).Type = static_cast<uint8_t>(AKind);
  }

  /// Closes what is still open (after a failure) as the handler's road leaves it, and gives
  /// the document its root.
  void Finish() {
    while (!FOpen.empty()) Close();
    if (!FHasRoot) return;
    TVnJSONBase* root = JSONLazy::NewContainer(FPool, *FStore, FRoot);
    JSONLazy::Counted(root, &FDoc);
    FDoc.FObjects.push_back(root);
  }

 private:
  struct Level {
    uint32_t Rec;
    uint32_t Count;  // children so far
    JSONNodeClass Class;
  };

  // The level that takes a value or container: an array, or a member of an open object. A
  // document takes no simple value, as the handler's table says.
  Level& ValueParent() {
    if (FOpen.empty()) throw EVnJSONException(0, UnicodeString(cJSONHandlerOops));
    return FOpen.back();
  }

  void Open(JSONNodeClass AClass) {
    if (FOpen.empty()) {
      // A container at the top replaces the document's root.
      FDoc.DestroyObjects();
      FHasRoot = true;
      FRoot = FStore->Count();
    } else {
      ++FOpen.back().Count;
    }
    FOpen.push_back({Add(AClass), 0, AClass});
  }

  void Close() {
    Level level = FOpen.back();
    FOpen.pop_back();
    if (level.Class == JSONNodeClass::Member) {
      // A member whose value never came (the text failed first) keeps the null placeholder.
      if (level.Count == 0) Add(JSONNodeClass::Simple);
    } else {
      At(level.Rec).Length = level.Count;
    }
    At(level.Rec).Next = FStore->Count();
  }

  JSONRec& At(uint32_t AIndex) noexcept { return FStore->At(AIndex); }
  uint32_t Add(JSONNodeClass AClass) { return FStore->Add(AClass); }
  void* Room(JSONRec& ARec, size_t AUnits) { return FStore->Room(ARec, AUnits); }

  JSONText TextOf(const JSONRec& ARec) const noexcept { return FStore->TextOf(ARec); }

  template <class U>
  static bool NeedsCheck(std::basic_string_view<U> AText) {
    for (U c : AText)
      if (c == '\\' || c == '%') return true;
    return false;
  }

  // The text into the block: UTF-8 as it stands, any other one-byte code page decoded.
  void Copy(JSONRec& ARec, std::basic_string_view<uint8_t> AText) {
    if (FUtf8) {
      void* p = Room(ARec, AText.size());
      if (!AText.empty()) std::memcpy(p, AText.data(), AText.size());
      return;
    }
    std::u16string_view wide = SpanView(FParser, AText, FBuffer);
    Copy(ARec, wide);
  }

  void Copy(JSONRec& ARec, std::u16string_view AText) {
    VnAssert(FStore->Width() == 2, cJSONLoadTextWidth);
    void* p = Room(ARec, AText.size());
    if (!AText.empty()) std::memcpy(p, AText.data(), AText.size() * 2);
  }

  TVnJSONDocument& FDoc;
  TVnJSONTextParser& FParser;
  NodePool& FPool;
  bool FUtf8;
  JSONStore* FStore;  // the loader's count on it
  bool FHasRoot = false;
  uint32_t FRoot = 0;
  std::vector<Level> FOpen;
  std::u16string FBuffer;
};

namespace {
struct FastLoad {
  TVnJSONDocument& Doc;
  size_t TextHint;
  static void Run(TVnJSONReader& AReader, void* AContext) {
    auto& self = *static_cast<FastLoad*>(AContext);
    NodePool* pool = NodePool::Create();
    struct SealPool {
      NodePool* P;
      ~SealPool() { P->Seal(); }
    } seal{pool};
    JSONTreeBuilder builder(self.Doc, *AReader.GetParser(), *pool, self.TextHint);
    try {
      RunJSONReadLoop(AReader, builder);
    } catch (...) {
      builder.Finish();
      throw;
    }
    builder.Finish();
  }
};
}  // namespace

void LoadDocumentFast(TVnJSONDocument& ADoc, TStream& AStream, Word ACodePage) {
  TVnJSONReader reader;
  // The handler hears nothing but failures here, and ignores them as on the handler's road.
  auto handler = std::make_unique<TVnJSONHandler>(&reader, &ADoc);
  handler->SetAutoDestroy(false);
  reader.SetContentHandler(IPtr<IVnJSONContentHandler>(static_cast<IVnJSONContentHandler*>(handler.get())));
  reader.SetErrorHandler(IPtr<IVnJSONErrorHandler>(static_cast<IVnJSONErrorHandler*>(handler.get())));
  const Int64 left = AStream.GetSize() - AStream.GetPosition();
  FastLoad context{ADoc, left > 0 ? static_cast<size_t>(left) : 0};
  reader.SetLoopOverride({&FastLoad::Run, &context});
  struct Clear {
    TVnJSONReader& R;
    ~Clear() {
      R.SetContentHandler(nullptr);
      R.SetErrorHandler(nullptr);
    }
  } clear{reader};
  reader.ParseStream(&AStream, ACodePage, u"");
}

}  // namespace vn::detail
