// The JSON tree's text, to the byte: compact and formatted forms, any code page. Loaded text
// that decoding and encoding again would give unchanged is copied straight through.
#include "json/doc_writer.h"

#include <cstring>
#include <type_traits>
#include <vector>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "dom/output_writer.h"
#include "vnxml/json_values.h"

namespace vn::detail {

namespace {

// True when a loaded string's raw text comes out of decode-then-encode unchanged: printable
// ASCII other than "/", and only the escapes the encoder itself writes.
template <class U>
bool IsPlainString(const U* p, uint32_t n) noexcept {
  for (uint32_t i = 0; i < n; ++i) {
    const auto c = static_cast<uint32_t>(p[i]);
    if (c < 0x20 || c > 0x7F || c == '/') return false;
    if (c == '\\') {
      if (++i == n) return false;
      switch (static_cast<uint32_t>(p[i])) {
        case '"': case '\\': case '/': case 'b': case 'f': case 'n': case 'r': case 't': break;
        default: return false;
      }
    }
  }
  return true;
}

// True when a raw name or number is written as it stands: printable ASCII with nothing the
// encoder escapes (a name is encoded again as it was read) and nothing the decoder changes.
template <class U>
bool IsPlainToken(const U* p, uint32_t n) noexcept {
  for (uint32_t i = 0; i < n; ++i) {
    const auto c = static_cast<uint32_t>(p[i]);
    if (c < 0x20 || c > 0x7F || c == '/' || c == '\\' || c == '"' || c == '%') return false;
  }
  return true;
}

#if defined(__SSE2__)
// Bytes that keep a one-byte text from being copied: below U+0020 or above U+007F (both below
// 0x20 as signed bytes), "/", the quote, and for tokens also the backslash and "%".
inline int StopMask(__m128i v, bool AToken) noexcept {
  __m128i stop = _mm_cmplt_epi8(v, _mm_set1_epi8(0x20));
  stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, _mm_set1_epi8('/')));
  stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, _mm_set1_epi8('"')));
  if (AToken) {
    stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, _mm_set1_epi8('\\')));
    stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, _mm_set1_epi8('%')));
  }
  return _mm_movemask_epi8(stop);
}
#endif

// IsPlainString and IsPlainToken for one-byte text, sixteen bytes a step where there are
// that many: most names and values are plain and short runs of them.
bool IsPlainBytes(const uint8_t* p, uint32_t n, bool AString) noexcept {
  uint32_t i = 0;
#if defined(__SSE2__)
  for (; i + 16 <= n; i += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    if (StopMask(v, !AString)) return false;
    // a backslash in a string needs a look at its escape: leave it to the loop below
    if (AString && _mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8('\\')))) break;
  }
#endif
  return AString ? IsPlainString(p + i, n - i) : IsPlainToken(p + i, n - i);
}

bool IsPlain(const JSONText& AText, bool AString) noexcept {
  if (AText.Width == 1) return IsPlainBytes(static_cast<const uint8_t*>(AText.Data), AText.Length, AString);
  auto* p = static_cast<const char16_t*>(AText.Data);
  return AString ? IsPlainString(p, AText.Length) : IsPlainToken(p, AText.Length);
}

template <class Out>
class Walker {
 public:
  Walker(Out& AOut, bool AFormatted) : FOut(AOut), FFormatted(AFormatted) {}

  void Run(TVnJSONBase& ARoot, Integer ALevel, bool AIndent) {
    Open(&ARoot, ALevel, AIndent);
    while (!FStack.empty()) {
      Frame& f = FStack.back();
      if (f.Next < f.Count) {
        const uint32_t i = f.Next++;
        TVnJSONBase* child = f.Items[i];
        const Integer level = f.Level;
        if (f.Shape == Kind::Other) {
          Open(child, level, f.Indent);  // a document's children take its arguments unchanged
        } else {
          if (i) FOut.Ascii(", ");
          Open(child, level + 1, i == 0);
        }
        continue;
      }
      const Frame done = f;
      FStack.pop_back();
      if (done.Shape == Kind::Other) continue;
      if (FFormatted) {
        FOut.Ascii("\r\n");
        Pad(done.Level);
      }
      FOut.Ascii(done.Shape == Kind::Object ? "}" : "]");
    }
  }

 private:
  enum class Kind : uint8_t { Object, Array, Other };
  struct Frame {
    TVnJSONBase* Node;
    TVnJSONBase* const* Items;  // the children, read once per container
    uint32_t Count;
    uint32_t Next;
    Integer Level;
    Kind Shape;
    bool Indent;
  };

  void Pad(Integer ALevel) {
    if (ALevel > 0) FOut.Indent(static_cast<size_t>(ALevel));
  }

  void Open(TVnJSONBase* ANode, Integer ALevel, bool AIndent) {
    const bool pad = FFormatted && AIndent;
    if (ANode->NodeClass() == JSONNodeClass::Member) {
      auto* member = static_cast<TVnJSONMember*>(ANode);
      if (pad) Pad(ALevel);
      Name(member->RawName());
      ANode = member->GetValueObj();
      AIndent = false;
      if (!ANode) {
        FOut.Ascii("null");  // a member that never got a value
        return;
      }
    }
    if (ANode->NodeClass() == JSONNodeClass::Simple) {
      if (FFormatted && AIndent) Pad(ALevel);
      Value(*static_cast<TVnJSONSimpleType*>(ANode));
      return;
    }
    Kind kind = Kind::Other;
    if (ANode->NodeClass() == JSONNodeClass::Object)
      kind = Kind::Object;
    else if (ANode->NodeClass() == JSONNodeClass::Array)
      kind = Kind::Array;
    if (kind != Kind::Other) {
      if (FFormatted) {
        if (AIndent) Pad(ALevel);
        FOut.Ascii(kind == Kind::Object ? "{ \r\n" : "[\r\n");
      } else {
        FOut.Ascii(kind == Kind::Object ? "{" : "[");
      }
    }
    FStack.push_back({ANode, ANode->ChildArray(), static_cast<uint32_t>(ANode->ChildCount()), 0, ALevel, kind, AIndent});
  }

  void Raw(const JSONText& AText) {
    if (AText.Width == 1)
      FOut.Ascii(std::string_view(static_cast<const char*>(AText.Data), AText.Length));
    else
      FOut.Text(std::u16string_view(static_cast<const char16_t*>(AText.Data), AText.Length));
  }

  // ALead, plain raw text and ATail as one piece: plain text is ASCII, so its bytes are its
  // UTF-8 as they stand.
  void Framed(std::string_view ALead, const JSONText& ARaw, std::string_view ATail) {
    if constexpr (std::is_same_v<Out, Utf8Output>) {
      if (ARaw.Width == 1) {
        char* o = FOut.Reserve(ALead.size() + ARaw.Length + ATail.size());
        std::memcpy(o, ALead.data(), ALead.size());
        o += ALead.size();
        if (ARaw.Length) std::memcpy(o, ARaw.Data, ARaw.Length);
        o += ARaw.Length;
        std::memcpy(o, ATail.data(), ATail.size());
        FOut.Advance(o + ATail.size());
        return;
      }
    }
    FOut.Ascii(ALead);
    Raw(ARaw);
    FOut.Ascii(ATail);
  }

  void Name(const JSONText& AName) {
    if (IsPlain(AName, false)) return Framed("\"", AName, "\": ");
    FOut.Ascii("\"");
    FOut.Text(VnStrToJSON(AName.Wide()));
    FOut.Ascii("\": ");
  }

  void Value(TVnJSONSimpleType& ASimple) {
    const JSONText& raw = ASimple.RawValue();
    if (!ASimple.HasVariant() && raw.IsSet()) {
      switch (ASimple.GetJSONType()) {
        case jdtString:
          if (IsPlain(raw, true)) return Framed("\"", raw, "\"");
          FOut.Ascii("\"");
          FOut.Text(VnStrToJSON(VnJSONtoStr(raw.Wide(), jdtString)));
          FOut.Ascii("\"");
          return;
        case jdtNumber:
        case jdtBoolean:
          if (IsPlain(raw, false))
            Raw(raw);
          else
            FOut.Text(VnJSONtoStr(raw.Wide(), ASimple.GetJSONType()));
          return;
        default: break;
      }
    }
    FOut.Text(ASimple.ValueText());
  }

  Out& FOut;
  bool FFormatted;
  std::vector<Frame> FStack;
};

template <class Out>
void WriteWith(Out& AOut, TVnJSONBase& ANode, bool AFormatted, Integer ALevel, bool AIndent) {
  Walker<Out>(AOut, AFormatted).Run(ANode, ALevel, AIndent);
  AOut.Flush();
}

}  // namespace

void JSONWriter::Write(TVnJSONBase& ANode, TStream& AStream, JSONOutputKind AKind, Word ACodePage, bool AFormatted,
                       Integer ALevel, bool AIndent) {
  switch (AKind) {
    case JSONOutputKind::Utf16: {
      Utf16Output out(AStream);
      WriteWith(out, ANode, AFormatted, ALevel, AIndent);
      break;
    }
    case JSONOutputKind::Utf8: {
      Utf8Output out(AStream);
      WriteWith(out, ANode, AFormatted, ALevel, AIndent);
      break;
    }
    case JSONOutputKind::Converted: {
      ConvertingOutput out(AStream, ACodePage);
      WriteWith(out, ANode, AFormatted, ALevel, AIndent);
      break;
    }
  }
}

}  // namespace vn::detail
