// Writing nodes as XML text. Values are stored escaped, so the writer copies what is stored.
// One walk serves every node class: the classes of this library are written inline through a
// buffered output, and a node of any other class (a subclass of the host's) writes itself
// through its own _SaveToStream after the output has been flushed.
#include <cstring>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "output_names.h"
#include "output_writer.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"

namespace vn {

namespace {

// The classes written inline. A node is written inline only when its dynamic class is exactly
// one of them (a host's subclass may override _SaveToStream without a class record of its own,
// so ClassType can't tell); a type compared by address and found different only costs speed.
struct BuiltInTypes {
  const std::type_info* Element = &typeid(TVnDOMElement);
  const std::type_info* Attribute = &typeid(TVnDOMAttribute);
  const std::type_info* CharacterData = &typeid(TVnDOMCharacterData);
  const std::type_info* Text = &typeid(TVnDOMText);
  const std::type_info* CData = &typeid(TVnDOMCDATA);
  const std::type_info* Comment = &typeid(TVnDOMComment);
  const std::type_info* Instruction = &typeid(TVnDOMProcessingInstruction);
};

const BuiltInTypes& Types() {
  static const BuiltInTypes types;
  return types;
}

// Out of line, so that the hot writers stay small enough to inline. Names, and the texts of
// sections, comments and instructions, that would not load back as they are, are refused.
[[noreturn, gnu::noinline]] void Refuse(const char16_t* AMessage, std::u16string_view AName) {
  throw EVnDomInvalidCharacter(AMessage, {AName});
}

bool ParentIsPlainElement(const TVnDOMNode* ANode) {
  TVnDOMNode* p = ANode->ParentNode();
  return p && p->GetNodeType() == ntElement && !p->GetPreserveSpace();
}

// One walk over a subtree into an output of type Out (the UTF-8, UTF-16 or converting output).
template <class Out>
class TreeWriter {
 public:
  TreeWriter(Out& AOut, Word ACodePage, bool AFormatted, Integer& ALevel)
      : FOut(AOut), FTypes(Types()), FCodePage(ACodePage), FFormatted(AFormatted), FLevel(ALevel) {}

  /// Any node, by its exact class.
  void Node(TVnDOMNode* ANode) {
    const std::type_info* type = &typeid(*ANode);
    if (type == FTypes.Element)
      Element(static_cast<TVnDOMElement*>(ANode));
    else if (type == FTypes.Attribute)
      Attribute(static_cast<TVnDOMAttribute*>(ANode));
    else
      Leaf(ANode, type);
  }

  void Document(const TVnDOMDocument* ADocument) {
    const auto& children = ADocument->ChildrenView();
    // By index: a node of a host's class that writes itself might touch the tree.
    for (uint32_t i = 0; i < children.size(); ++i) Node(children[i]);
  }

  /// The element and its subtree, with an explicit stack: depth costs no native stack.
  void Element(TVnDOMElement* ARoot) {
    if (!OpenTag(ARoot)) return;
    struct Frame {
      TVnDOMElement* Element;
      uint32_t Next;
    };
    std::vector<Frame> stack;
    stack.push_back({ARoot, 0});
    while (!stack.empty()) {
      Frame& f = stack.back();
      const auto& children = f.Element->ChildrenView();
      if (f.Next >= children.size()) {
        TVnDOMElement* done = f.Element;
        stack.pop_back();
        CloseTag(done);
        continue;
      }
      TVnDOMNode* c = children[f.Next++];
      if (c->GetNodeType() == ntAttribute) continue;
      const std::type_info* type = &typeid(*c);
      if (type == FTypes.Element) {
        auto* e = static_cast<TVnDOMElement*>(c);
        if (OpenTag(e)) stack.push_back({e, 0});  // f is invalid from here
      } else {
        Leaf(c, type);
      }
    }
  }

  [[gnu::always_inline]] void Attribute(const TVnDOMAttribute* AAttribute) {
    const std::u16string_view name = AAttribute->QualifiedNameView();
    if (!FNames.Attribute(name)) Refuse(cVnDomAttributeNameNotWritable, name);
    FOut.Framed(" ", name, "=\"");
    Stored("", AAttribute->StoredText(), "\"");
  }

  void CharacterData(const TVnDOMCharacterData* ANode) { Stored("", ANode->StoredText(), ""); }

  void CData(const TVnDOMCDATA* ANode) {
    const detail::CompactString& value = ANode->StoredText();
    if (Holds(value, "]]>")) Refuse(cVnDomCDATANotWritable, value.str());
    Stored("<![CDATA[", value, "]]>");
  }

  void Comment(const TVnDOMComment* ANode) {
    if (FFormatted) {
      // A comment always starts a line, even at the very start of the output.
      if (!ANode->GetPreserveSpace()) FOut.Ascii("\r\n");
      if (ParentIsPlainElement(ANode)) Indent();
    }
    const detail::CompactString& value = ANode->StoredText();
    if (Holds(value, "-->")) Refuse(cVnDomCommentNotWritable, value.str());
    Stored("<!--", value, "-->");
  }

  void Instruction(const TVnDOMProcessingInstruction* ANode) {
    // An instruction at the start of the output (a declaration) gets no line end, with or
    // without a byte-order mark: the test is on the stream's size, not its position.
    if (FFormatted && StreamHasFiveBytes()) {
      FOut.Ascii("\r\n");
      if (ParentIsPlainElement(ANode)) Indent();
    }
    // The reader ends a target at a space or "?", skips the spaces after it and ends the data
    // at the first "?", with or without ">" behind it.
    const std::u16string_view target = ANode->QualifiedNameView();
    if (target.find_first_of(u" ?") != target.npos) Refuse(cVnDomInstructionTargetNotWritable, target);
    const std::u16string_view data = ANode->GetData();
    if (data.find(u'?') != data.npos || data.starts_with(u' ')) Refuse(cVnDomInstructionNotWritable, data);
    FOut.Framed("<?", target, "");
    if (!data.empty()) FOut.Framed(" ", data, "");
    FOut.Ascii("?>");
  }

 private:
  void Leaf(TVnDOMNode* ANode, const std::type_info* AType) {
    if (AType == FTypes.Text || AType == FTypes.CharacterData)
      CharacterData(static_cast<TVnDOMCharacterData*>(ANode));
    else if (AType == FTypes.CData)
      CData(static_cast<TVnDOMCDATA*>(ANode));
    else if (AType == FTypes.Comment)
      Comment(static_cast<TVnDOMComment*>(ANode));
    else if (AType == FTypes.Instruction)
      Instruction(static_cast<TVnDOMProcessingInstruction*>(ANode));
    else
      Foreign(ANode);
  }

  // A stored text between markup: UTF-8 bytes go to a UTF-8 output as they are, anything else
  // through UTF-16, as one piece either way.
  void Stored(std::string_view AMarkup, const detail::CompactString& AText, std::string_view ATail) {
    if (!AText.IsUtf8()) {
      FOut.Framed(AMarkup, AText.Wide(), ATail);
    } else if constexpr (std::is_same_v<Out, detail::Utf8Output>) {
      FOut.FramedBytes(AMarkup, AText.Utf8(), ATail);
    } else {
      FScratch = AText.str();
      FOut.Framed(AMarkup, FScratch, ATail);
    }
  }

  // AText holds the ASCII sequence AWord.
  static bool Holds(const detail::CompactString& AText, std::string_view AWord) {
    return AText.Visit([AWord](auto AUnits) {
      using Unit = typename decltype(AUnits)::value_type;
      const std::basic_string<Unit> word(AWord.begin(), AWord.end());
      return AUnits.find(word) != AUnits.npos;
    });
  }

  // A node of another class writes itself, to the stream as it stands.
  void Foreign(TVnDOMNode* ANode) {
    FOut.Flush();
    ANode->_SaveToStream(FOut.Stream(), FCodePage, FFormatted, FLevel);
    FOut.Resync();
  }

  // Writes the start tag; true when the element has content, which raises the level.
  bool OpenTag(TVnDOMElement* AElement) {
    const std::u16string_view name = AElement->QualifiedNameView();
    if (!FNames.Element(name)) Refuse(cVnDomElementNameNotWritable, name);
    if (FFormatted && !AElement->GetPreserveSpace()) StartLine();
    FOut.Framed("<", name, "");
    const auto& attributes = AElement->AttributesView();
    for (uint32_t i = 0; i < attributes.size(); ++i) {
      TVnDOMNode* a = attributes[i];
      if (&typeid(*a) == FTypes.Attribute)
        Attribute(static_cast<TVnDOMAttribute*>(a));
      else
        Foreign(a);
    }
    // Processing instructions alone don't count as content.
    const bool empty = AElement->ElementsView().empty() && AElement->CharNodesView().empty();
    FOut.Ascii(empty ? " />" : ">");
    if (empty) return false;
    ++FLevel;
    return true;
  }

  void CloseTag(const TVnDOMElement* AElement) {
    --FLevel;
    // An element with text only stays on one line.
    if (FFormatted && !AElement->ElementsView().empty() && !AElement->GetPreserveSpace()) {
      FOut.Ascii("\r\n");
      Indent();
    }
    FOut.Framed("</", AElement->QualifiedNameView(), ">");
  }

  // A formatted element starts a line, except at the very start of the output, which is also
  // right behind a UTF-16 byte-order mark.
  void StartLine() {
    const Int64 pos = FOut.Position();
    if (pos == 2) {
      FOut.Flush();
      unsigned char mark[2] = {0, 0};
      TStream& stream = FOut.Stream();
      stream.Seek(0, soBeginning);
      stream.ReadBuffer(mark, 2);
      FOut.Resync();
      if (!(mark[0] == 0xFF && mark[1] == 0xFE)) FOut.Ascii("\r\n");
    } else if (pos > 0) {
      FOut.Ascii("\r\n");
    }
    Indent();
  }

  void Indent() {
    if (FLevel >= 0) FOut.Indent(static_cast<size_t>(FLevel) + 1);
  }

  bool StreamHasFiveBytes() {
    // Writing only adds to the stream: once true, it stays true.
    if (!FFiveBytes) {
      FOut.Flush();
      FFiveBytes = FOut.Stream().GetSize() >= 5;
    }
    return FFiveBytes;
  }

  Out& FOut;
  const BuiltInTypes& FTypes;
  Word FCodePage;
  bool FFormatted;
  bool FFiveBytes = false;
  Integer& FLevel;
  detail::NameCheck FNames;
  std::u16string FScratch;
};

// Runs AWrite(TreeWriter&) with the output for ACodePage and hands the bytes to the stream.
template <class Fn>
void WriteTree(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel, Fn&& AWrite) {
  auto run = [&](auto& AOut) {
    TreeWriter<std::remove_reference_t<decltype(AOut)>> writer(AOut, ACodePage, AFormatted, ALevel);
    AWrite(writer);
    AOut.Flush();
  };
  switch (ACodePage) {
    case cVnCodePageDefault:  // this system's 8-bit default is UTF-8
    case cVnCodePageUTF8: {
      detail::Utf8Output out(AStream);
      run(out);
      break;
    }
    case cVnCodePageUTF16LE: {
      detail::Utf16Output out(AStream);
      run(out);
      break;
    }
    default: {
      detail::ConvertingOutput out(AStream, ACodePage);
      run(out);
    }
  }
}

// The text of a UTF-16 string stream; an empty stream has no memory block to copy from.
UnicodeString TextOf(const TVnStringStream& AStream) {
  std::string_view bytes = AStream.GetBytesView();
  if (bytes.empty()) return {};
  UnicodeString text(bytes.size() / 2, u'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * 2);
  return text;
}

}  // namespace

// ---- entry points ----

void TVnDOMNode::_SaveToStream(TStream&, Word, bool, Integer&) {}

void TVnDOMNode::SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted) {
  Integer level = -1;
  _SaveToStream(AStream, ACodePage, AFormatted, level);
}

UnicodeString TVnDOMNode::GetXML() {
  TVnStringStream s(cVnCodePageUTF16LE);
  SaveToStream(s, cVnCodePageUTF16LE, false);
  return TextOf(s);
}

UnicodeString TVnDOMNode::GetFormattedXML() {
  TVnStringStream s(cVnCodePageUTF16LE);
  SaveToStream(s, cVnCodePageUTF16LE, true);
  return TextOf(s);
}

void TVnDOMDocument::SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, bool AWriteBOM) {
  if (AWriteBOM) {
    if (ACodePage == cVnCodePageUTF16LE)
      AStream.WriteBuffer(cVnUTF16LE.data(), static_cast<Int64>(cVnUTF16LE.size()));
    else if (ACodePage == cVnCodePageUTF8)
      AStream.WriteBuffer(cVnUTF8.data(), static_cast<Int64>(cVnUTF8.size()));
  }
  TVnDOMNode::SaveToStream(AStream, ACodePage, AFormatted);
}

void TVnDOMDocument::SaveToStreamEx(TStream& AStream, bool AFormatted, bool AWriteBOM) {
  SaveToStream(AStream, VnCodePage(GetEncoding()), AFormatted, AWriteBOM);
}

void TVnDOMDocument::SaveToFile(std::u16string_view AFileName, bool AFormatted, bool AWriteBOM) {
  TFileStream file(AFileName, fmCreate);
  // The writer hands the file large blocks itself: no copy of the whole text in memory.
  SaveToStreamEx(file, AFormatted, AWriteBOM);
}

UnicodeString VnFormatXML(std::u16string_view AXML) {
  TVnDOMDocument doc;
  doc.LoadXML(AXML);
  return doc.GetFormattedXML();
}

UnicodeString VnFormatXML(std::string_view AXML) { return VnFormatXML(Utf8ToUnicode(AXML)); }

UnicodeString TVnDOMElement::GetInnerXML() {
  TVnStringStream s(cVnCodePageUTF16LE);
  for (TVnDOMNode* e : ElementsView()) e->SaveToStream(s, cVnCodePageUTF16LE, false);
  return TextOf(s);
}

UnicodeString TVnDOMElement::GetFormattedInnerXML() {
  TVnStringStream s(cVnCodePageUTF16LE);
  for (TVnDOMNode* e : ElementsView()) e->SaveToStream(s, cVnCodePageUTF16LE, true);
  return TextOf(s);
}

// ---- each class writes itself through the shared walk ----

void TVnDOMDocument::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  WriteTree(AStream, ACodePage, AFormatted, ALevel, [&](auto& AWriter) { AWriter.Document(this); });
}

void TVnDOMElement::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  WriteTree(AStream, ACodePage, AFormatted, ALevel, [&](auto& AWriter) { AWriter.Element(this); });
}

void TVnDOMAttribute::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  WriteTree(AStream, ACodePage, AFormatted, ALevel, [&](auto& AWriter) { AWriter.Attribute(this); });
}

void TVnDOMCharacterData::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  WriteTree(AStream, ACodePage, AFormatted, ALevel, [&](auto& AWriter) { AWriter.CharacterData(this); });
}

void TVnDOMCDATA::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  WriteTree(AStream, ACodePage, AFormatted, ALevel, [&](auto& AWriter) { AWriter.CData(this); });
}

void TVnDOMComment::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  WriteTree(AStream, ACodePage, AFormatted, ALevel, [&](auto& AWriter) { AWriter.Comment(this); });
}

void TVnDOMProcessingInstruction::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted,
                                                Integer& ALevel) {
  WriteTree(AStream, ACodePage, AFormatted, ALevel, [&](auto& AWriter) { AWriter.Instruction(this); });
}

}  // namespace vn
