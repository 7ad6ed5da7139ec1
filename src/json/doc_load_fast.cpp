// The fast road of a document load: the reading loop calls this builder directly, which carves
// nodes and their raw text out of a pool of the load. The children of an open container wait
// in one shared list and move into an array of their final size when it closes. Every step
// mirrors what TVnJSONHandler does through the node operations, so both roads leave the same
// tree, also after a failure (the open levels are closed as they stand).
#include <cstring>
#include <memory>
#include <vector>

#include "json/doc_load.h"
#include "json/doc_messages.h"
#include "json/doc_plain.h"
#include "json/json_read_loop.h"
#include "vnxml/json_handler.h"

namespace vn::detail {

class JSONTreeBuilder {
 public:
  JSONTreeBuilder(TVnJSONDocument& ADoc, TVnJSONTextParser& AParser, NodePool& APool)
      : FDoc(ADoc), FParser(AParser), FPool(APool), FUtf8(AParser.GetCharacterSetType() == csUTF8) {}

  void StartDocument() {}
  void EndDocument() {}
  void StartObject() { Open(new (FPool) TVnJSONObject()); }
  void StartArray() { Open(new (FPool) TVnJSONArray()); }
  void EndObject() { Close(); }
  void EndArray() { Close(); }
  void EndMember() { Close(); }

  template <class U>
  void StartMember(std::basic_string_view<U> AName) {
    if (FOpen.empty() || FOpen.back().Node->NodeClass() != JSONNodeClass::Object)
      throw Exception(UnicodeString(cJSONInvalidObjectType));
    auto* member = new (FPool) TVnJSONMember();
    member->FName = Copy(AName);
    member->FName.Plain = IsPlain(member->FName, false) ? JSONText::kPlainYes : JSONText::kPlainNo;
    Adopt(member, FOpen.back().Node);
    FOpen.push_back({member, FPending.size()});
  }

  template <class U>
  void Value(TVnJSONSimpleDataType AKind, std::basic_string_view<U> AText) {
    TVnJSONBase* parent = ValueParent();
    auto* simple = new (FPool) TVnJSONSimpleType();
    // Made before the text is checked, as the handler's road does: an array gives its values
    // their kind at once, a member's value gets it with the text.
    if (parent->NodeClass() == JSONNodeClass::Array) simple->FJSONType = AKind;
    Adopt(simple, parent);
    if (AKind == jdtNumber) {
      // The reader hands over a run of "+-.0123456789Ee" only: plain, nothing to decode.
      simple->FRaw = Copy(AText);
      simple->FRaw.Plain = JSONText::kPlainYes;
    } else if (AKind == jdtString) {
      // Plain text holds only the escapes of "\"\\/bfnrt", which decode without fail: only
      // other text needs the decoder's check.
      JSONText raw = Copy(AText);
      raw.Plain = IsPlain(raw, true) ? JSONText::kPlainYes : JSONText::kPlainNo;
      if (raw.Plain != JSONText::kPlainYes && NeedsCheck(AText)) {
        std::u16string_view wide = SpanView(FParser, AText, FBuffer);
        CheckJSONText(wide, AKind);
      }
      simple->FRaw = raw;
    } else {
      simple->FRaw = Literal(AKind, AText.size());
      simple->FRaw.Plain = JSONText::kPlainYes;
    }
    simple->FJSONType = AKind;
  }

  /// Closes what is still open (after a failure) as the handler's road leaves it.
  void Finish() {
    while (!FOpen.empty()) Close();
  }

 private:
  struct Level {
    TVnJSONBase* Node;
    size_t PendingStart;
  };

  // The node that takes a value or container: an array, or a member of an open object. A
  // document takes no simple value, as the handler's table says.
  TVnJSONBase* ValueParent() {
    if (FOpen.empty()) throw EVnJSONException(0, UnicodeString(cJSONHandlerOops));
    return FOpen.back().Node;
  }

  void Open(TVnJSONBase* ANode) {
    if (FOpen.empty()) {
      // A container at the top replaces the document's root.
      FDoc.DestroyObjects();
      ANode->FOwner = &FDoc;
      Counted(ANode);
      FDoc.FObjects.push_back(ANode);
    } else {
      Adopt(ANode, FOpen.back().Node);
    }
    FOpen.push_back({ANode, FPending.size()});
  }

  void Close() {
    Level level = FOpen.back();
    FOpen.pop_back();
    TVnJSONBase* node = level.Node;
    auto count = static_cast<uint32_t>(FPending.size() - level.PendingStart);
    if (node->NodeClass() == JSONNodeClass::Member && count == 0) {
      // A member whose value never came (the text failed first) keeps the null placeholder.
      auto* placeholder = new (FPool) TVnJSONSimpleType();
      Adopt(placeholder, node);
      count = 1;
    }
    if (count) {
      node->FObjects.reserve(count, &FPool);
      node->FObjects.append_reserved(FPending.data() + level.PendingStart, count);
      FPending.resize(level.PendingStart);
      if (node->NodeClass() == JSONNodeClass::Object)
        static_cast<TVnJSONObject*>(node)->FLastMember = static_cast<TVnJSONMember*>(node->FObjects.back());
      else if (node->NodeClass() == JSONNodeClass::Member)
        static_cast<TVnJSONMember*>(node)->FValue = node->FObjects.back();
    }
  }

  static void Counted(TVnJSONBase* ANode) {
    ANode->FDestroyChilds = true;  // made without an owner, an array would think it lists a path result
    ANode->SetAutoDestroy(false);
    ANode->FRefCount = 1;  // the owner's reference
  }

  void Adopt(TVnJSONBase* ANode, TVnJSONBase* AParent) {
    ANode->FOwner = AParent;
    Counted(ANode);
    FPending.push_back(ANode);
  }

  // The reader matched the letters, so the text is the literal itself: no copy is kept.
  static JSONText Literal(TVnJSONDataType AKind, size_t ALength) {
    static constexpr char cNull[] = "null", cTrue[] = "true", cFalse[] = "false";
    JSONText t;
    t.Data = AKind == jdtNull ? cNull : ALength == 4 ? cTrue : cFalse;
    t.Length = static_cast<uint32_t>(AKind == jdtNull || ALength == 4 ? 4 : 5);
    t.Width = 1;
    return t;
  }

  template <class U>
  static bool NeedsCheck(std::basic_string_view<U> AText) {
    for (U c : AText)
      if (c == '\\' || c == '%') return true;
    return false;
  }

  // The text into the pool: UTF-8 as it stands, any other one-byte code page decoded.
  JSONText Copy(std::basic_string_view<uint8_t> AText) {
    JSONText t;
    if (FUtf8) {
      void* p = FPool.Allocate(AText.size() ? AText.size() : 1);
      if (!AText.empty()) std::memcpy(p, AText.data(), AText.size());
      t.Data = p;
      t.Length = static_cast<uint32_t>(AText.size());
      t.Width = 1;
      return t;
    }
    std::u16string_view wide = SpanView(FParser, AText, FBuffer);
    return Copy(wide);
  }

  JSONText Copy(std::u16string_view AText) {
    JSONText t;
    void* p = FPool.Allocate(AText.size() ? AText.size() * 2 : 2);
    if (!AText.empty()) std::memcpy(p, AText.data(), AText.size() * 2);
    t.Data = p;
    t.Length = static_cast<uint32_t>(AText.size());
    t.Width = 2;
    return t;
  }

  TVnJSONDocument& FDoc;
  TVnJSONTextParser& FParser;
  NodePool& FPool;
  bool FUtf8;
  std::vector<Level> FOpen;
  std::vector<TVnJSONBase*> FPending;
  std::u16string FBuffer;
};

namespace {
struct FastLoad {
  TVnJSONDocument& Doc;
  static void Run(TVnJSONReader& AReader, void* AContext) {
    auto& self = *static_cast<FastLoad*>(AContext);
    NodePool* pool = NodePool::Create();
    struct SealPool {
      NodePool* P;
      ~SealPool() { P->Seal(); }
    } seal{pool};
    JSONTreeBuilder builder(self.Doc, *AReader.GetParser(), *pool);
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
  FastLoad context{ADoc};
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
