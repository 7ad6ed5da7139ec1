// The JSON tree's text, to the byte: compact and formatted forms, any code page. Loaded text
// that decoding and encoding again would give unchanged is copied straight through.
#include "json/doc_writer.h"
#include "json/doc_plain.h"
#include "json/doc_store.h"

#include <bit>
#include <cstring>
#include <type_traits>
#include <vector>

#include "dom/output_writer.h"
#include "vnxml/json_values.h"

namespace vn::detail {

namespace {

int HexDigit(uint8_t c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The letter of a two-character escape for an ASCII unit, or 0 when the unit is written as is.
char ShortEscape(uint32_t u) noexcept {
  switch (u) {
    case 8: return 'b';
    case 9: return 't';
    case 10: return 'n';
    case 12: return 'f';
    case 13: return 'r';
    case '"': return '"';
    case '/': return '/';
    case '\\': return '\\';
    default: return 0;
  }
}

// A loaded UTF-8 string as decode-then-encode writes it, straight from its bytes into UTF-8
// output: Latin-1 letters stay, "/" and control characters get their escapes, everything from
// U+0100 up becomes \uXXXX (a pair of them above U+FFFF), a \u escape is the code unit it names
// written the same way. Gives nullptr, having written nothing, for what only the long way decides
// alike: other escapes, a byte sequence that is not strict UTF-8.
char* TranscodeUtf8String(const uint8_t* p, const uint8_t* e, char* o) noexcept {
  static constexpr char kHex[] = "0123456789ABCDEF";
  auto escapeUnit = [&](uint32_t u) {
    o[0] = '\\';
    o[1] = 'u';
    o[2] = kHex[u >> 12];
    o[3] = kHex[(u >> 8) & 15];
    o[4] = kHex[(u >> 4) & 15];
    o[5] = kHex[u & 15];
    o += 6;
  };
  // one UTF-16 code unit as the escaping writes it, in UTF-8
  auto writeUnit = [&](uint32_t u) {
    if (u >= 0x100) {
      escapeUnit(u);
    } else if (u >= 0x80) {
      *o++ = static_cast<char>(0xC0 | (u >> 6));
      *o++ = static_cast<char>(0x80 | (u & 0x3F));
    } else if (u >= 1 && u <= 7) {
      // dropped
    } else if (const char esc = ShortEscape(u)) {
      *o++ = '\\';
      *o++ = esc;
    } else {
      *o++ = static_cast<char>(u);
    }
  };
  while (p < e) {
#if defined(__SSE2__)
    // runs of printable ASCII go sixteen bytes a step; the room reserved is six bytes a byte
    while (e - p >= 16) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      const int stop = StopMask(v, true);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(o), v);
      const int run = stop ? std::countr_zero(static_cast<unsigned>(stop)) : 16;
      p += run;
      o += run;
      if (stop) break;
    }
    if (p == e) break;
#endif
    const uint8_t c = *p;
    if (c < 0x80) {
      ++p;
      if (c != '\\') {
        writeUnit(c);
        continue;
      }
      // the escapes that come out as they went in, and \u; anything else takes the long way
      if (p == e) return nullptr;
      switch (*p) {
        case '"': case '\\': case '/': case 'b': case 'f': case 'n': case 'r': case 't':
          *o++ = '\\';
          *o++ = static_cast<char>(*p++);
          continue;
        case 'u': {
          uint32_t u = 0;
          if (e - p < 5) return nullptr;
          for (int k = 1; k <= 4; ++k) {
            const int d = HexDigit(p[k]);
            if (d < 0) return nullptr;
            u = (u << 4) | static_cast<uint32_t>(d);
          }
          p += 5;
          writeUnit(u);
          continue;
        }
        default: return nullptr;
      }
    }
    uint32_t cp;
    if (c >= 0xC2 && c <= 0xDF && e - p >= 2 && (p[1] & 0xC0) == 0x80) {
      writeUnit(((c & 0x1Fu) << 6) | (p[1] & 0x3Fu));
      p += 2;
      continue;
    }
    if (c >= 0xE0 && c <= 0xEF && e - p >= 3 && (p[1] & 0xC0) == 0x80 && (p[2] & 0xC0) == 0x80) {
      cp = ((c & 0x0Fu) << 12) | ((p[1] & 0x3Fu) << 6) | (p[2] & 0x3Fu);
      if (cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF)) return nullptr;
      escapeUnit(cp);
      p += 3;
      continue;
    }
    if (c >= 0xF0 && c <= 0xF4 && e - p >= 4 && (p[1] & 0xC0) == 0x80 && (p[2] & 0xC0) == 0x80 &&
        (p[3] & 0xC0) == 0x80) {
      cp = ((c & 0x07u) << 18) | ((p[1] & 0x3Fu) << 12) | ((p[2] & 0x3Fu) << 6) | (p[3] & 0x3Fu);
      if (cp < 0x10000 || cp > 0x10FFFF) return nullptr;
      cp -= 0x10000;
      escapeUnit(0xD800 + (cp >> 10));
      escapeUnit(0xDC00 + (cp & 0x3FF));
      p += 4;
      continue;
    }
    return nullptr;
  }
  return o;
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
        const Integer level = f.Level;
        if (f.Store) {
          // a container nobody opened: its records, in order
          const uint32_t rec = f.NextRec;
          f.NextRec = f.Store->At(rec).Next;
          if constexpr (std::is_same_v<Out, Utf8Output>) {
            if (!FFormatted && PlainRecord(*f.Store, rec, i != 0)) continue;
          }
          if (i) FOut.Ascii(", ");
          OpenRecord(*f.Store, rec, level + 1, i == 0);
          continue;
        }
        TVnJSONBase* child = f.Items[i];
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
    TVnJSONBase* const* Items;  // the children, read once per container
    const JSONStore* Store;     // or, for a container nobody opened, its records
    uint32_t NextRec;
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
    OpenBracket(kind, ALevel, AIndent);
    uint32_t rec = 0;
    if (const JSONStore* store = JSONLazy::StoreOf(*ANode, rec)) {
      FStack.push_back({nullptr, store, rec + 1, static_cast<uint32_t>(store->At(rec).Length), 0, ALevel, kind, AIndent});
      return;
    }
    FStack.push_back({ANode->ChildArray(), nullptr, 0, static_cast<uint32_t>(ANode->ChildCount()), 0, ALevel, kind,
                      AIndent});
  }

  void OpenBracket(Kind AKind, Integer ALevel, bool AIndent) {
    if (AKind == Kind::Other) return;
    if (FFormatted) {
      if (AIndent) Pad(ALevel);
      FOut.Ascii(AKind == Kind::Object ? "{ \r\n" : "[\r\n");
    } else {
      FOut.Ascii(AKind == Kind::Object ? "{" : "[");
    }
  }

  // Compact UTF-8 output of the commonest record, a plain simple value or a member holding one,
  // with its separator in one piece; false, having written nothing, for anything else.
  bool PlainRecord(const JSONStore& AStore, uint32_t ARec, bool ASeparator) {
    const JSONRec* value = &AStore.At(ARec);
    const JSONRec* name = nullptr;
    if (value->Class == JSONNodeClass::Member) {
      if (value->Plain != JSONText::kPlainYes || AStore.Width() != 1) return false;
      name = value;
      value = &AStore.At(ARec + 1);
    }
    if (value->Class != JSONNodeClass::Simple || value->Plain != JSONText::kPlainYes) return false;
    const JSONText v = AStore.TextOf(*value);
    if (!v.IsSet() || v.Width != 1) return false;
    const bool quoted = value->Type == jdtString;
    const size_t size = 2 + (name ? name->Length + 4 : 0) + v.Length + 2;
    char* o = FOut.Reserve(size);
    if (ASeparator) {
      o[0] = ',';
      o[1] = ' ';
      o += 2;
    }
    if (name) {
      *o++ = '"';
      std::memcpy(o, AStore.TextOf(*name).Data, name->Length);
      o += name->Length;
      std::memcpy(o, "\": ", 3);
      o += 3;
    }
    if (quoted) *o++ = '"';
    std::memcpy(o, v.Data, v.Length);
    o += v.Length;
    if (quoted) *o++ = '"';
    FOut.Advance(o);
    return true;
  }

  // Open for a record: what Open does for the node the record would become.
  void OpenRecord(const JSONStore& AStore, uint32_t ARec, Integer ALevel, bool AIndent) {
    const JSONRec* rec = &AStore.At(ARec);
    if (rec->Class == JSONNodeClass::Member) {
      if (FFormatted && AIndent) Pad(ALevel);
      Name(AStore.TextOf(*rec));
      rec = &AStore.At(++ARec);  // a loaded member always has its value record
      AIndent = false;
    }
    if (rec->Class == JSONNodeClass::Simple) {
      if (FFormatted && AIndent) Pad(ALevel);
      const JSONText raw = AStore.TextOf(*rec);
      const auto type = static_cast<TVnJSONDataType>(rec->Type);
      if (!raw.IsSet() || !RawValue(raw, type)) {
        TVnJSONSimpleType value;  // a value whose text failed: as the node would write it
        value.StoreVariant(Variant::Null(), type);
        FOut.Text(value.ValueText());
      }
      return;
    }
    const Kind kind = rec->Class == JSONNodeClass::Object ? Kind::Object : Kind::Array;
    OpenBracket(kind, ALevel, AIndent);
    FStack.push_back({nullptr, &AStore, ARec + 1, rec->Length, 0, ALevel, kind, AIndent});
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
    if (IsPlainText(AName, false)) return Framed("\"", AName, "\": ");
    FOut.Ascii("\"");
    FOut.Text(VnStrToJSON(AName.Wide()));
    FOut.Ascii("\": ");
  }

  void Value(TVnJSONSimpleType& ASimple) {
    const JSONText& raw = ASimple.RawValue();
    if (!ASimple.HasVariant() && raw.IsSet() && RawValue(raw, ASimple.GetJSONType())) return;
    FOut.Text(ASimple.ValueText());
  }

  // Writes a loaded value from its raw text; false, having written nothing, for a kind that
  // only the node writes.
  bool RawValue(const JSONText& raw, TVnJSONDataType AType) {
    switch (AType) {
      case jdtString:
        if (IsPlainText(raw, true)) {
          Framed("\"", raw, "\"");
          return true;
        }
        if constexpr (std::is_same_v<Out, Utf8Output>) {
          if (raw.Width == 1) {
            auto* p = static_cast<const uint8_t*>(raw.Data);
            char* o = FOut.Reserve(6 * static_cast<size_t>(raw.Length) + 2);
            *o = '"';
            if (char* end = TranscodeUtf8String(p, p + raw.Length, o + 1)) {
              *end = '"';
              FOut.Advance(end + 1);
              return true;
            }
          }
        }
        FOut.Ascii("\"");
        FOut.Text(VnStrToJSON(VnJSONtoStr(raw.Wide(), jdtString)));
        FOut.Ascii("\"");
        return true;
      case jdtNumber:
      case jdtBoolean:
        if (IsPlainText(raw, false))
          Raw(raw);
        else
          FOut.Text(VnJSONtoStr(raw.Wide(), AType));
        return true;
      default: return false;
    }
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
