#pragma once
// The private door between the image-list collections and the light item
// objects they hand out. A `cImageList` or `cListImage` holds nothing but a
// door to its collection and its own identity; every value it shows (key,
// index, tag, size, the images) lives in the collection and is asked for
// through the door, naming the datum and the identity. The collection looks
// the identity up before it serves, so an item whose image or list has gone
// gets error 1962 instead of another item's data.
//
// A door holds its collection alive, as the item needs it; the collection
// holds no doors and no items, so nothing goes round in a circle.
#include <cstdint>
#include <memory>

#include "runtime/Object.h"
#include "runtime/String.h"
#include "server/Dispatch.h"

namespace vantor::imaging {

// What an item may ask of its collection. They travel as plain numbers.
enum ENUM_DATA_NAMES : int32_t {
  dnListKey = 1,
  dnListIndex = 2,
  dnListImages = 3,
  dnImageKey = 11,
  dnImageIndex = 12,
  dnImageTag = 13,
  dnImageWidth = 14,
  dnImageHeight = 15,
};

class IItemData : public server::Dispatch {
 public:
  // The collection's side of the door. Each member raises 1962 (see
  // RaiseStale) when `oID` names no live item, and may raise what a change
  // of key or index raises.
  class Source {
   public:
    virtual ~Source() = default;
    virtual int32_t ItemDataLong(int32_t DataName, int32_t oID) = 0;
    virtual void SetItemDataLong(int32_t DataName, int32_t oID, int32_t value) = 0;
    virtual String ItemDataString(int32_t DataName, int32_t oID) = 0;
    virtual void SetItemDataString(int32_t DataName, int32_t oID, const String& value) = 0;
    virtual ObjectPtr ItemDataObject(int32_t DataName, int32_t oID) = 0;
  };

  // A door that leads nowhere: every datum is stale.
  IItemData();
  explicit IItemData(std::shared_ptr<Source> source);
  static void Register();

  int32_t get_ClassDataLong(int32_t DataName, int32_t oID) const;
  void put_ClassDataLong(int32_t DataName, int32_t oID, int32_t value);
  String get_ClassDataString(int32_t DataName, int32_t oID) const;
  void put_ClassDataString(int32_t DataName, int32_t oID, String value);
  ObjectPtr get_ClassDataObject(int32_t DataName, int32_t oID) const;

  // Error 1962 as an item of the datum's kind reports a list or an image
  // that no longer exists.
  [[noreturn]] static void RaiseStale(int32_t DataName);

 protected:
  const server::Bindings* Bound() const override;

 private:
  std::shared_ptr<Source> source_;
};

}  // namespace vantor::imaging
