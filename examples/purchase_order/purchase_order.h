// purchase_order.h: a hand-written schema over a purchase order, as a host would derive one from
// TVnXMLSchemaElement: each class registers its rows in document order and offers typed
// properties; wrappers of child elements are made on first use and owned by their parent.
//
//   <purchaseOrder orderDate="1999-10-20">
//     <shipTo country="US"><name/><street/><city/><state/><zip/></shipTo>
//     <billTo country="US">...</billTo>
//     <comment/>                                      (optional)
//     <items><item partNum="872-AA"><productName/><quantity/><USPrice/>
//            <comment/><shipDate/></item>...</items>   (comment, shipDate optional)
//   </purchaseOrder>
#pragma once

#include <memory>

#include "vnxml/schema_element.h"

namespace po {

using vn::Integer;
using vn::IPtr;
using vn::IVnDOMElement;
using vn::TVnXMLSchemaElement;
using vn::UnicodeString;

class TUSAddress : public TVnXMLSchemaElement {
 public:
  enum : Integer { iCountry, iName, iStreet, iCity, iState, iZip };
  explicit TUSAddress(IPtr<IVnDOMElement> AElement) : TVnXMLSchemaElement(std::move(AElement)) {
    AddSchemaInfo(iCountry, vn::ntAttribute, u"country", 0, 1, true);
    AddSchemaInfo(iName, vn::ntElement, u"name", 1, 1);
    AddSchemaInfo(iStreet, vn::ntElement, u"street", 1, 1);
    AddSchemaInfo(iCity, vn::ntElement, u"city", 1, 1);
    AddSchemaInfo(iState, vn::ntElement, u"state", 1, 1);
    AddSchemaInfo(iZip, vn::ntElement, u"zip", 1, 1);
  }
  UnicodeString GetCountry() { return GetStringValue(iCountry); }
  void SetCountry(std::u16string_view AValue) { SetStringValue(iCountry, AValue); }
  UnicodeString GetName() { return GetStringValue(iName); }
  void SetName(std::u16string_view AValue) { SetStringValue(iName, AValue); }
  UnicodeString GetStreet() { return GetStringValue(iStreet); }
  void SetStreet(std::u16string_view AValue) { SetStringValue(iStreet, AValue); }
  UnicodeString GetCity() { return GetStringValue(iCity); }
  void SetCity(std::u16string_view AValue) { SetStringValue(iCity, AValue); }
  UnicodeString GetState() { return GetStringValue(iState); }
  void SetState(std::u16string_view AValue) { SetStringValue(iState, AValue); }
  double GetZip() { return GetDecimalValue(iZip); }
  void SetZip(double AValue) { SetDecimalValue(iZip, AValue); }
};

class TItem : public TVnXMLSchemaElement {
 public:
  enum : Integer { iPartNum, iProductName, iQuantity, iUSPrice, iComment, iShipDate };
  explicit TItem(IPtr<IVnDOMElement> AElement) : TVnXMLSchemaElement(std::move(AElement)) {
    AddSchemaInfo(iPartNum, vn::ntAttribute, u"partNum", 0, 1, true);
    AddSchemaInfo(iProductName, vn::ntElement, u"productName", 1, 1);
    AddSchemaInfo(iQuantity, vn::ntElement, u"quantity", 1, 1);
    AddSchemaInfo(iUSPrice, vn::ntElement, u"USPrice", 1, 1);
    AddSchemaInfo(iComment, vn::ntElement, u"comment", 0, 1);
    AddSchemaInfo(iShipDate, vn::ntElement, u"shipDate", 0, 1);
  }
  UnicodeString GetPartNum() { return GetStringValue(iPartNum); }
  void SetPartNum(std::u16string_view AValue) { SetStringValue(iPartNum, AValue); }
  UnicodeString GetProductName() { return GetStringValue(iProductName); }
  void SetProductName(std::u16string_view AValue) { SetStringValue(iProductName, AValue); }
  vn::Cardinal GetQuantity() { return GetUnsignedIntValue(iQuantity); }
  void SetQuantity(vn::Cardinal AValue) { SetUnsignedIntValue(iQuantity, AValue); }
  double GetUSPrice() { return GetDecimalValue(iUSPrice); }
  void SetUSPrice(double AValue) { SetDecimalValue(iUSPrice, AValue); }
  UnicodeString GetComment() { return GetStringValue(iComment); }
  void SetComment(std::u16string_view AValue) { SetStringValue(iComment, AValue); }
  vn::TDateTime GetShipDate() { return GetDateValue(iShipDate); }
  void SetShipDate(vn::TDateTime AValue) { SetDateValue(iShipDate, AValue); }
};

/// The repeated <item> children: their wrappers sit in one owned list under the row's index.
class TItems : public TVnXMLSchemaElement {
 public:
  enum : Integer { iItem };
  using TItemList = vn::generics::TObjectList<TItem>;
  explicit TItems(IPtr<IVnDOMElement> AElement) : TVnXMLSchemaElement(std::move(AElement)) {
    AddSchemaInfo(iItem, vn::ntElement, u"item", 0, -1);
  }
  Integer Count() { return List().Count(); }
  TItem* GetItem(Integer AIndex) { return List()[AIndex]; }
  TItem* Add() {
    auto* item = new TItem(AsElement()->AddElement(u"item"));
    List().Add(item);
    return item;
  }

 private:
  // Built from the element's children on first use, so a loaded order lists its items.
  TItemList& List() {
    vn::TValue held;
    if (FArrayElements.TryGetValue(iItem, held)) return *static_cast<TItemList*>(held.AsObject());
    auto* list = new TItemList();
    FArrayElements.Add(iItem, vn::TValue::FromObject(list));
    IPtr<vn::IVnDOMElementList> elements = AsElement()->CreateElementList(u"item", vn::TVnDOMSelectOptions{});
    for (Integer i = 0; i < elements->Count(); ++i)
      list->Add(new TItem(elements->GetItem(i).As<IVnDOMElement>()));
    return *list;
  }
};

class TPurchaseOrder : public TVnXMLSchemaElement {
 public:
  enum : Integer { iOrderDate, iShipTo, iBillTo, iComment, iItems };
  explicit TPurchaseOrder(IPtr<IVnDOMElement> AElement) : TVnXMLSchemaElement(std::move(AElement)) {
    AddSchemaInfo(iOrderDate, vn::ntAttribute, u"orderDate", 0, 1);
    AddSchemaInfo(iShipTo, vn::ntElement, u"shipTo", 1, 1);
    AddSchemaInfo(iBillTo, vn::ntElement, u"billTo", 1, 1);
    AddSchemaInfo(iComment, vn::ntElement, u"comment", 0, 1);
    AddSchemaInfo(iItems, vn::ntElement, u"items", 1, 1);
  }
  vn::TDateTime GetOrderDate() { return GetDateValue(iOrderDate); }
  void SetOrderDate(vn::TDateTime AValue) { SetDateValue(iOrderDate, AValue); }
  UnicodeString GetComment() { return GetStringValue(iComment); }
  void SetComment(std::u16string_view AValue) { SetStringValue(iComment, AValue); }
  TUSAddress* ShipTo() { return Sub<TUSAddress>(iShipTo, FShipTo); }
  TUSAddress* BillTo() { return Sub<TUSAddress>(iBillTo, FBillTo); }
  TItems* Items() { return Sub<TItems>(iItems, FItems); }

 private:
  template <class T>
  T* Sub(Integer AIndex, T*& AField) {
    if (!AField || !FSubElements.Contains(AField)) {
      AField = new T(GetNodeByIndex(AIndex, true).template As<IVnDOMElement>());
      FSubElements.Add(AField);
    }
    return AField;
  }
  TUSAddress* FShipTo = nullptr;
  TUSAddress* FBillTo = nullptr;
  TItems* FItems = nullptr;
};

}  // namespace po
