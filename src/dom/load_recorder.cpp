// LoadRecorder: the root element's content of a document load, kept as records.
#include "dom/load_recorder.h"

#include <cstring>

#include "common/text_parser_scan.h"
#include "dom/name_table.h"
#include "dom/stored_text.h"
#include "vnxml/common/sysutils.h"
#include "dom/tree_builder.h"
#include "vnxml/dom_element.h"

namespace vn::detail {

LoadRecorder::LoadRecorder(TreeBuilder& ABuilder)
    : B(ABuilder), FNames(ABuilder.FNames), FPool(ABuilder.FPool), FTape(new LoadTape()) {
  FPool->HoldTape(FTape);
}

const NameRec* LoadRecorder::InternSlow(std::u16string_view AName) {
  if (AName.empty()) return nullptr;
  NameRec*& cached = FNameCache[CacheSlot(AName)];
  NameRec* rec = FNames->Acquire(AName);
  FPool->HoldName(rec);
  cached = rec;
  return rec;
}

// ---- start and end tags ----

void LoadRecorder::BeginElementSlow(std::u16string_view AQName) {
  if (!Recording()) B.BeginElement(AQName);
  if (!FTape) return;  // finished: the builder takes what still comes
  FPending = FTape->AddBegin(Intern(AQName));
  FEscapedDeclarations.clear();
}

void LoadRecorder::NoteEscaped(std::u16string_view AValue, bool AMayHoldQuote) {
  // stored as the builder stores it: a double quote read from single quotes as a reference
  UnicodeString& stored = FEscapedDeclarations.emplace_back();
  for (char16_t c : AValue) {
    if (c == u'"' && AMayHoldQuote)
      stored += u"&quot;";
    else
      stored.push_back(c);
  }
}

bool LoadRecorder::IsDeclarationSlow(std::u16string_view AQName) {
  // the name as the node takes it: one leading colon dropped, the prefix before the first colon
  if (AQName[0] == u':') AQName.remove_prefix(1);
  if (AQName.size() < 5) return false;
  const size_t colon = AQName.find(u':');
  const std::u16string_view word = colon == 0 || colon == AQName.npos ? AQName : AQName.substr(0, colon);
  return word.size() == 5 && SameText(word, u"xmlns");
}

void LoadRecorder::AddAttribute(std::u16string_view AQName, std::u16string_view AValue, bool AMayHoldQuote) {
  if (!Recording()) {
    B.AddAttribute(AQName, AValue, AMayHoldQuote);
  } else {
    if (!FKeepSpace && TreeBuilder::MayBeXmlSpace(AQName)) FKeepSpace = true;
    if (IsDeclaration(AQName)) {
      FTape->Declarations = true;
      if (AValue.find(u'&') != AValue.npos) NoteEscaped(AValue, AMayHoldQuote);
    }
  }
  if (FPending) FTape->AddAttr(Intern(AQName), AValue, AMayHoldQuote);
}

void LoadRecorder::AddAttributeUtf8Slow(std::u16string_view AQName, std::string_view AValue, bool AMayHoldQuote,
                                        bool AHigh) {
  if (!Recording()) {
    B.AddAttributeUtf8(AQName, AValue, AMayHoldQuote, AHigh);
  } else {
    if (!FKeepSpace && TreeBuilder::MayBeXmlSpace(AQName)) FKeepSpace = true;
    if (IsDeclaration(AQName)) FTape->Declarations = true;
    if (IsDeclaration(AQName) && AValue.find('&') != AValue.npos) {
      std::u16string decoded;
      const auto* b = reinterpret_cast<const uint8_t*>(AValue.data());
      NoteEscaped(DecodeUtf8(b, b + AValue.size(), decoded), AMayHoldQuote);
    }
  }
  if (FPending) FTape->AddAttrUtf8(Intern(AQName), AValue, AMayHoldQuote, AHigh);
}

void LoadRecorder::EnterElementSlow() {
  if (!Recording()) {
    B.EnterElement();
    FRoot = static_cast<TVnDOMElement*>(B.FCurrent);
    // Inside, white space is kept where an element of the load may keep it: everywhere when
    // the root does, or when some start tag may say "xml:space", or names match otherwise.
    FKeepSpace = FRoot->GetPreserveSpace() || FRoot->GetCollation() != TVnXPathCollationASCIICI::Class();
  }
  LoadTape::Begin* begin = std::exchange(FPending, nullptr);
  if (!begin) return;
  FOpen.push_back({begin, FTape->Position()});
  // Joining decodes the declarations: one that fails ends the load here, as it would have
  // with the element made now, and its open takes the same failure as read.
  for (const UnicodeString& value : FEscapedDeclarations) {
    CompactString stored;
    stored.assign(value);
    try {
      (void)DecodeEscaped(stored);
    } catch (...) {
      LoadTape::SetFlag(&begin->H, LoadTape::kJoinFails);
      throw;
    }
  }
}

void LoadRecorder::EndElementSlow() {
  if (!Recording()) {
    B.EndElement();
    return;
  }
  const Open open = FOpen.back();
  FOpen.pop_back();
  open.Begin->ContentEnd = FTape->Position();
  if (!FOpen.empty()) return;
  CloseRoot(open);
  B.EndElement();
}

void LoadRecorder::CloseRoot(const Open& ARoot) {
  B.LeaveOnTape(FRoot, reinterpret_cast<const char*>(ARoot.Begin), ARoot.Content != ARoot.Begin->ContentEnd);
}

void LoadRecorder::Finish() {
  if (!FTape) return B.Finish();  // finished before
  if (FPending) {
    FTape->Truncate(reinterpret_cast<const char*>(FPending));
    FPending = nullptr;
  }
  if (Recording()) {
    const char* end = FTape->Position();
    for (const Open& open : FOpen) open.Begin->ContentEnd = end;
    const Open root = FOpen.front();
    FOpen.clear();
    CloseRoot(root);
  }
  B.Finish();
  if (!FTape->Lazy) FPool->DropTape();  // nothing was left for later
  FTape = nullptr;
}

// ---- content ----

bool LoadRecorder::BuilderKeepsWhitespace() const { return B.KeepsWhitespace(); }

void LoadRecorder::AddText(std::u16string_view AStoredValue) {
  if (!Recording()) return B.AddText(AStoredValue);
  FTape->AddText(LoadTape::kText, AStoredValue);
}


void LoadRecorder::AddWhitespace(std::u16string_view AText) {
  if (!Recording()) return B.AddWhitespace(AText);
  if (FKeepSpace) FTape->AddText(LoadTape::kSpace, AText);
}



void LoadRecorder::AddCDATA(std::u16string_view AText) {
  if (!Recording()) return B.AddCDATA(AText);
  FTape->AddText(LoadTape::kCData, AText);
}


void LoadRecorder::AddComment(std::u16string_view AText) {
  if (!Recording()) return B.AddComment(AText);
  FTape->AddText(LoadTape::kComment, AText);
}

void LoadRecorder::AddInstruction(std::u16string_view ATarget, std::u16string_view AData) {
  if (!Recording()) return B.AddInstruction(ATarget, AData);
  FTape->AddInstruction(Intern(ATarget), AData);
}

}  // namespace vn::detail
