// string_list.h: TStrings and TStringList, the platform's lists of strings with an object per line.
// Lines may be "name=value" pairs (Names, Values, ValueFromIndex). Text joins lines with "\r\n";
// CommaText and DelimitedText quote items as the platform does. Comparison is case-insensitive
// unless CaseSensitive is set, and follows the collation of AnsiCompareText / AnsiCompareStr.
// A TStringList with OwnsObjects frees the objects of the lines it deletes. Index failures raise
// EStringListError "List index out of bounds (%d)".
#pragma once

#include <vector>

#include "vnxml/common/exception.h"
#include "vnxml/common/object.h"
#include "vnxml/common/persistent.h"

namespace vn {

class TStrings;

/// Iterates the lines of a TStrings by value (range-for support).
class TStringsEnumerator {
 public:
  TStringsEnumerator(const TStrings* AStrings, Integer AIndex) : FStrings(AStrings), FIndex(AIndex) {}
  UnicodeString operator*() const;
  TStringsEnumerator& operator++() {
    ++FIndex;
    return *this;
  }
  bool operator==(const TStringsEnumerator& AOther) const { return FIndex == AOther.FIndex; }
  bool operator!=(const TStringsEnumerator& AOther) const { return FIndex != AOther.FIndex; }

 private:
  const TStrings* FStrings;
  Integer FIndex;
};

class TStrings : public TPersistent {
  VN_DECLARE_CLASS(TStrings, TPersistent)
 public:
  TStrings() = default;
  TStrings(const TStrings&) = delete;
  TStrings& operator=(const TStrings&) = delete;

  virtual Integer GetCount() const = 0;
  /// Appends a line and returns its index (a sorted list returns where it went).
  virtual Integer Add(const UnicodeString& AText);
  virtual Integer AddObject(const UnicodeString& AText, TObject* AObject);
  /// Appends "name=value" with the current NameValueSeparator.
  Integer AddPair(const UnicodeString& AName, const UnicodeString& AValue, TObject* AObject = nullptr);
  void Append(const UnicodeString& AText) { Add(AText); }
  /// Appends every line of AStrings with its object.
  virtual void AddStrings(const TStrings& AStrings);
  virtual void Insert(Integer AIndex, const UnicodeString& AText) = 0;
  virtual void InsertObject(Integer AIndex, const UnicodeString& AText, TObject* AObject);
  virtual void Delete(Integer AIndex) = 0;
  virtual void Clear() = 0;
  virtual void Exchange(Integer AIndex1, Integer AIndex2);
  virtual void Move(Integer ACurIndex, Integer ANewIndex);
  /// The first line equal to AText under CompareStrings, or -1.
  virtual Integer IndexOf(std::u16string_view AText) const;
  /// The first line whose name part equals AName under CompareStrings, or -1.
  virtual Integer IndexOfName(std::u16string_view AName) const;
  Integer IndexOfObject(const TObject* AObject) const;
  /// Same lines in the same order, compared exactly.
  bool Equals(const TStrings& AStrings) const;
  /// Copies lines, objects and the separators of another TStrings; the objects are shared, not copied.
  void Assign(const TPersistent* ASource) override;

  void BeginUpdate();
  void EndUpdate();
  Integer GetUpdateCount() const { return FUpdateCount; }

  UnicodeString GetStrings(Integer AIndex) const { return Get(AIndex); }
  void SetStrings(Integer AIndex, const UnicodeString& AText) { Put(AIndex, AText); }
  UnicodeString operator[](Integer AIndex) const { return Get(AIndex); }
  TObject* GetObjects(Integer AIndex) const { return GetObject(AIndex); }
  void SetObjects(Integer AIndex, TObject* AObject) { PutObject(AIndex, AObject); }

  /// The part of line AIndex before the separator; empty when the line has none.
  UnicodeString GetNames(Integer AIndex) const;
  /// The part of line AIndex after the separator; empty when the line has none.
  UnicodeString GetValueFromIndex(Integer AIndex) const;
  /// Replaces the value of line AIndex; an empty value deletes the line.
  void SetValueFromIndex(Integer AIndex, const UnicodeString& AValue);
  /// The value of the first line named AName, or empty.
  UnicodeString GetValues(std::u16string_view AName) const;
  /// Sets the value of the line named AName, adding it when absent; an empty value deletes it.
  void SetValues(std::u16string_view AName, const UnicodeString& AValue);

  /// Every line followed by LineBreak (the last one too while TrailingLineBreak holds).
  UnicodeString GetText() const;
  /// Replaces the lines by those of AText; CR, LF and CRLF all end a line.
  void SetText(std::u16string_view AText);
  /// DelimitedText with ',' and '"', blanks also separating.
  UnicodeString GetCommaText() const;
  void SetCommaText(std::u16string_view AText);
  /// Lines joined by Delimiter, quoted with QuoteChar where a line holds a delimiter, quote or blank.
  UnicodeString GetDelimitedText() const;
  void SetDelimitedText(std::u16string_view AText);

  char16_t GetDelimiter() const { return FDelimiter; }
  void SetDelimiter(char16_t AValue) { FDelimiter = AValue; }
  char16_t GetQuoteChar() const { return FQuoteChar; }
  void SetQuoteChar(char16_t AValue) { FQuoteChar = AValue; }
  char16_t GetNameValueSeparator() const { return FNameValueSeparator; }
  void SetNameValueSeparator(char16_t AValue) { FNameValueSeparator = AValue; }
  /// When set, only Delimiter separates items: blanks belong to the items.
  bool GetStrictDelimiter() const { return FStrictDelimiter; }
  void SetStrictDelimiter(bool AValue) { FStrictDelimiter = AValue; }
  const UnicodeString& GetLineBreak() const { return FLineBreak; }
  void SetLineBreak(const UnicodeString& AValue) { FLineBreak = AValue; }
  bool GetTrailingLineBreak() const { return FTrailingLineBreak; }
  void SetTrailingLineBreak(bool AValue) { FTrailingLineBreak = AValue; }

  TStringsEnumerator begin() const { return TStringsEnumerator(this, 0); }
  TStringsEnumerator end() const { return TStringsEnumerator(this, GetCount()); }

  /// Orders two lines as this list does: <0, 0 or >0.
  virtual Integer CompareStrings(std::u16string_view A, std::u16string_view B) const;

 protected:
  virtual UnicodeString Get(Integer AIndex) const = 0;
  virtual void Put(Integer AIndex, const UnicodeString& AText);
  virtual TObject* GetObject(Integer AIndex) const;
  virtual void PutObject(Integer AIndex, TObject* AObject);
  /// Told when the first BeginUpdate starts (true) and the last EndUpdate ends (false).
  virtual void SetUpdateState(bool AUpdating);
  [[noreturn]] static void Error(const char16_t* AMessage, Int64 AData);

  friend class TStringsEnumerator;

 private:
  char16_t FDelimiter = u',';
  char16_t FQuoteChar = u'"';
  char16_t FNameValueSeparator = u'=';
  bool FStrictDelimiter = false;
  bool FTrailingLineBreak = true;
  UnicodeString FLineBreak = u"\r\n";
  Integer FUpdateCount = 0;

  UnicodeString JoinDelimited(char16_t ADelimiter, char16_t AQuote, bool AStrict) const;
  void SplitDelimited(std::u16string_view AText, char16_t ADelimiter, char16_t AQuote, bool AStrict);
};

inline UnicodeString TStringsEnumerator::operator*() const { return FStrings->Get(FIndex); }

enum TDuplicates : uint8_t { dupIgnore, dupAccept, dupError };

class TStringList;
using TStringListSortCompare = Integer (*)(TStringList* AList, Integer AIndex1, Integer AIndex2);

class TStringList : public TStrings {
  VN_DECLARE_CLASS(TStringList, TStrings)
 public:
  TStringList() = default;
  explicit TStringList(bool AOwnsObjects) : FOwnsObjects(AOwnsObjects) {}
  TStringList(TDuplicates ADuplicates, bool ASorted, bool ACaseSensitive);
  /// Frees the objects of the lines when OwnsObjects is set.
  ~TStringList() override;

  Integer GetCount() const override { return static_cast<Integer>(FList.size()); }
  /// In a sorted list: inserts in order, and Duplicates decides about an equal line.
  Integer AddObject(const UnicodeString& AText, TObject* AObject) override;
  /// Raises EStringListError on a sorted list.
  void Insert(Integer AIndex, const UnicodeString& AText) override;
  void InsertObject(Integer AIndex, const UnicodeString& AText, TObject* AObject) override;
  void Delete(Integer AIndex) override;
  void Clear() override;
  void Exchange(Integer AIndex1, Integer AIndex2) override;
  Integer IndexOf(std::u16string_view AText) const override;
  void Assign(const TPersistent* ASource) override;

  /// Binary search of a sorted list: true when found; AIndex is the line or where it would go.
  virtual bool Find(std::u16string_view AText, Integer& AIndex) const;
  /// Sorts by CompareStrings (stable).
  virtual void Sort();
  void CustomSort(TStringListSortCompare ACompare);

  bool GetSorted() const { return FSorted; }
  void SetSorted(bool AValue);
  TDuplicates GetDuplicates() const { return FDuplicates; }
  void SetDuplicates(TDuplicates AValue) { FDuplicates = AValue; }
  bool GetCaseSensitive() const { return FCaseSensitive; }
  void SetCaseSensitive(bool AValue);
  bool GetOwnsObjects() const { return FOwnsObjects; }
  void SetOwnsObjects(bool AValue) { FOwnsObjects = AValue; }

  Integer CompareStrings(std::u16string_view A, std::u16string_view B) const override;

 protected:
  UnicodeString Get(Integer AIndex) const override;
  void Put(Integer AIndex, const UnicodeString& AText) override;
  TObject* GetObject(Integer AIndex) const override;
  void PutObject(Integer AIndex, TObject* AObject) override;

 private:
  struct Item {
    UnicodeString FString;
    TObject* FObject;
  };
  std::vector<Item> FList;
  TDuplicates FDuplicates = dupIgnore;
  bool FSorted = false;
  bool FCaseSensitive = false;
  bool FOwnsObjects = false;

  void CheckIndex(Integer AIndex) const;
  void InsertItem(Integer AIndex, const UnicodeString& AText, TObject* AObject);
};

}  // namespace vn
