// TStrings: the list-independent behaviour of string lists (names and values, text forms).
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/sysutils.h"

namespace vn {

void TStrings::Error(const char16_t* AMessage, Int64 AData) { throw EStringListError(AMessage, {AData}); }

Integer TStrings::CompareStrings(std::u16string_view A, std::u16string_view B) const { return AnsiCompareText(A, B); }

Integer TStrings::Add(const UnicodeString& AText) { return AddObject(AText, nullptr); }

Integer TStrings::AddObject(const UnicodeString& AText, TObject* AObject) {
  const Integer index = GetCount();
  InsertObject(index, AText, AObject);
  return index;
}

Integer TStrings::AddPair(const UnicodeString& AName, const UnicodeString& AValue, TObject* AObject) {
  return AddObject(AName + FNameValueSeparator + AValue, AObject);
}

void TStrings::AddStrings(const TStrings& AStrings) {
  BeginUpdate();
  try {
    // Count first: AStrings may be this list.
    const Integer count = AStrings.GetCount();
    for (Integer i = 0; i < count; ++i) AddObject(AStrings.Get(i), AStrings.GetObject(i));
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TStrings::InsertObject(Integer AIndex, const UnicodeString& AText, TObject* AObject) {
  Insert(AIndex, AText);
  PutObject(AIndex, AObject);
}

void TStrings::Put(Integer AIndex, const UnicodeString& AText) {
  TObject* object = GetObject(AIndex);
  Delete(AIndex);
  InsertObject(AIndex, AText, object);
}

TObject* TStrings::GetObject(Integer) const { return nullptr; }
void TStrings::PutObject(Integer, TObject*) {}

void TStrings::Exchange(Integer AIndex1, Integer AIndex2) {
  const UnicodeString text = Get(AIndex1);
  TObject* object = GetObject(AIndex1);
  Put(AIndex1, Get(AIndex2));
  PutObject(AIndex1, GetObject(AIndex2));
  Put(AIndex2, text);
  PutObject(AIndex2, object);
}

void TStrings::Move(Integer ACurIndex, Integer ANewIndex) {
  if (ACurIndex == ANewIndex) return;
  const UnicodeString text = Get(ACurIndex);
  TObject* object = GetObject(ACurIndex);
  // Detach the object first so that an owning list does not free it on the way.
  PutObject(ACurIndex, nullptr);
  Delete(ACurIndex);
  InsertObject(ANewIndex, text, object);
}

Integer TStrings::IndexOf(std::u16string_view AText) const {
  for (Integer i = 0, n = GetCount(); i < n; ++i)
    if (CompareStrings(Get(i), AText) == 0) return i;
  return -1;
}

Integer TStrings::IndexOfName(std::u16string_view AName) const {
  for (Integer i = 0, n = GetCount(); i < n; ++i) {
    const UnicodeString line = Get(i);
    const size_t sep = line.find(FNameValueSeparator);
    if (sep != UnicodeString::npos && CompareStrings(std::u16string_view(line).substr(0, sep), AName) == 0) return i;
  }
  return -1;
}

Integer TStrings::IndexOfObject(const TObject* AObject) const {
  for (Integer i = 0, n = GetCount(); i < n; ++i)
    if (GetObject(i) == AObject) return i;
  return -1;
}

bool TStrings::Equals(const TStrings& AStrings) const {
  const Integer n = GetCount();
  if (n != AStrings.GetCount()) return false;
  for (Integer i = 0; i < n; ++i)
    if (Get(i) != AStrings.Get(i)) return false;
  return true;
}

void TStrings::Assign(const TPersistent* ASource) {
  const TStrings* source = CastObject<TStrings>(const_cast<TPersistent*>(ASource));
  if (!source) {
    TPersistent::Assign(ASource);
    return;
  }
  if (source == this) return;
  BeginUpdate();
  try {
    Clear();
    FDelimiter = source->FDelimiter;
    FQuoteChar = source->FQuoteChar;
    FNameValueSeparator = source->FNameValueSeparator;
    FStrictDelimiter = source->FStrictDelimiter;
    FLineBreak = source->FLineBreak;
    FTrailingLineBreak = source->FTrailingLineBreak;
    AddStrings(*source);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TStrings::BeginUpdate() {
  if (FUpdateCount++ == 0) SetUpdateState(true);
}

void TStrings::EndUpdate() {
  if (FUpdateCount > 0 && --FUpdateCount == 0) SetUpdateState(false);
}

void TStrings::SetUpdateState(bool) {}

// ---- names and values ----

UnicodeString TStrings::GetNames(Integer AIndex) const {
  const UnicodeString line = Get(AIndex);
  const size_t sep = line.find(FNameValueSeparator);
  return sep == UnicodeString::npos ? UnicodeString() : line.substr(0, sep);
}

UnicodeString TStrings::GetValueFromIndex(Integer AIndex) const {
  if (AIndex < 0) return {};
  const UnicodeString line = Get(AIndex);
  const size_t sep = line.find(FNameValueSeparator);
  return sep == UnicodeString::npos ? UnicodeString() : line.substr(sep + 1);
}

void TStrings::SetValueFromIndex(Integer AIndex, const UnicodeString& AValue) {
  if (AValue.empty()) {
    if (AIndex >= 0) Delete(AIndex);
    return;
  }
  if (AIndex < 0) AIndex = Add(u"");
  Put(AIndex, GetNames(AIndex) + FNameValueSeparator + AValue);
}

UnicodeString TStrings::GetValues(std::u16string_view AName) const {
  const Integer index = IndexOfName(AName);
  return index < 0 ? UnicodeString() : GetValueFromIndex(index);
}

void TStrings::SetValues(std::u16string_view AName, const UnicodeString& AValue) {
  Integer index = IndexOfName(AName);
  if (AValue.empty()) {
    if (index >= 0) Delete(index);
    return;
  }
  if (index < 0) index = Add(u"");
  Put(index, UnicodeString(AName) + FNameValueSeparator + AValue);
}

// ---- text forms ----

UnicodeString TStrings::GetText() const {
  UnicodeString text;
  const Integer n = GetCount();
  for (Integer i = 0; i < n; ++i) {
    text += Get(i);
    if (i + 1 < n || FTrailingLineBreak) text += FLineBreak;
  }
  return text;
}

void TStrings::SetText(std::u16string_view AText) {
  BeginUpdate();
  try {
    Clear();
    const bool anyLineEnd = FLineBreak == u"\r\n" || FLineBreak == u"\n" || FLineBreak == u"\r" || FLineBreak.empty();
    size_t i = 0;
    while (i < AText.size()) {
      size_t end = i;
      size_t next = 0;
      if (anyLineEnd) {
        while (end < AText.size() && AText[end] != u'\r' && AText[end] != u'\n') ++end;
        next = end;
        if (next < AText.size() && AText[next] == u'\r') ++next;
        if (next < AText.size() && AText[next] == u'\n') ++next;
      } else {
        end = AText.find(FLineBreak, i);
        if (end == std::u16string_view::npos) end = AText.size();
        next = std::min(AText.size(), end + FLineBreak.size());
      }
      Add(UnicodeString(AText.substr(i, end - i)));
      i = next;
    }
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

UnicodeString TStrings::GetDelimitedText() const {
  return JoinDelimited(FDelimiter, FQuoteChar, FStrictDelimiter);
}

void TStrings::SetDelimitedText(std::u16string_view AText) {
  SplitDelimited(AText, FDelimiter, FQuoteChar, FStrictDelimiter);
}

UnicodeString TStrings::GetCommaText() const { return JoinDelimited(u',', u'"', false); }

void TStrings::SetCommaText(std::u16string_view AText) { SplitDelimited(AText, u',', u'"', false); }

UnicodeString TStrings::JoinDelimited(char16_t ADelimiter, char16_t AQuote, bool AStrict) const {
  const Integer n = GetCount();
  if (n == 1 && Get(0).empty()) return UnicodeString(2, AQuote);
  UnicodeString text;
  for (Integer i = 0; i < n; ++i) {
    const UnicodeString item = Get(i);
    bool quote = false;
    for (char16_t c : item) {
      // An empty item stays bare; a NUL ends the scan as it ends the platform's text.
      if (c == 0) break;
      if (c == AQuote || c == ADelimiter || (!AStrict && c <= u' ')) {
        quote = true;
        break;
      }
    }
    if (i > 0) text += ADelimiter;
    text += quote ? QuotedStr(item, AQuote) : item;
  }
  return text;
}

void TStrings::SplitDelimited(std::u16string_view AText, char16_t ADelimiter, char16_t AQuote, bool AStrict) {
  AText = AText.substr(0, AText.find(u'\0'));  // the platform's text ends at a NUL
  const size_t n = AText.size();
  auto isBlank = [&](size_t p) { return p < n && AText[p] >= 1 && AText[p] <= u' '; };
  BeginUpdate();
  try {
    Clear();
    size_t p = 0;
    if (!AStrict)
      while (isBlank(p)) ++p;
    while (p < n) {
      UnicodeString item;
      if (AText[p] == AQuote) {
        // Up to the closing quote, doubled quotes halved; an unclosed quote runs to the end.
        ++p;
        while (p < n) {
          if (AText[p] == AQuote) {
            if (p + 1 < n && AText[p + 1] == AQuote) {
              item += AQuote;
              p += 2;
              continue;
            }
            ++p;
            break;
          }
          item += AText[p++];
        }
      } else {
        const size_t start = p;
        while (p < n && AText[p] != ADelimiter && (AStrict || AText[p] > u' ')) ++p;
        item.assign(AText.substr(start, p - start));
      }
      Add(item);
      if (!AStrict)
        while (isBlank(p)) ++p;
      if (p < n && AText[p] == ADelimiter) {
        if (p + 1 == n) Add(u"");
        do {
          ++p;
        } while (!AStrict && isBlank(p));
      }
    }
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

}  // namespace vn
