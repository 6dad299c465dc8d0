// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "script/Names.h"
#include "script/Room.h"
#include "script/Value.h"

class SoField;
class SoFieldContainer;

namespace tessel::script {

/// A new value of the script's own, with the neutral value of its type; one of the types sfString to mfRotation.
Value newFieldObject(Type type);
/// Makes `result` such a value. The object that it holds is used again if it is of that type and nobody else's.
void allocField(Value& result, Type type);
/// A value over a toolkit field, `none` for a field that scripts can't hold. With `keepsNode` the node that has the
/// field lives as long as the value.
Value fieldObjectOver(SoField& field, bool keepsNode);

/// The evaluated arguments of a method or constructor.
using Arguments = std::span<const Value* const>;

/// What a script value holds that is no number: one field value with the properties and methods of its type.
///
/// It is either a value of the script's own or stands over a toolkit field of a node, which it then reads and
/// writes in place. It counts its shares; the last one deletes it.
class VsField {
public:
  VsField(const VsField&) = delete;
  VsField& operator=(const VsField&) = delete;

  // Objects come and go with every event; their room is used again.
  static void* operator new(std::size_t size);
  static void operator delete(void* room, std::size_t size);

  void ref() { ++shares; }
  void unref() {
    if (--shares == 0) dispose();
  }
  /// Only one value holds this object, so it may be overwritten in place.
  bool isUnshared() const { return shares == 1; }

  virtual Type type() const = 0;
  /// The toolkit field that this stands over; null for a value of the script's own.
  SoField* liveField() const { return field; }
  /// A value that lives on may keep nodes from going.
  virtual bool keepsNodes() const { return node != nullptr; }

  /// Over a toolkit field: gives it what was assigned in its place, unless that is the field itself.
  void receive(const Value& current) {
    if (current.object()->liveField() != field) postExecute(current);
  }
  /// Vectors over a toolkit field: gives it a vector or element now.
  virtual void setVecValue(const Value& /*newValue*/) {}
  /// Vectors: gives theirs to a toolkit field of the type.
  virtual void sendTo(SoField& /*to*/) const {}

  /// Whether a call of the method may go on to its arguments: it exists, with that many. Reports what is wrong.
  virtual bool acceptsCall(Method /*method*/, int /*count*/) { return false; }
  /// Calls a method that was accepted. Without a result, `result` stays as it is.
  virtual void methodCall(Value& /*result*/, Method /*method*/, Arguments /*arguments*/) {}
  /// Reads a property into `result`; `name` is its name as written.
  virtual void memberEvaluate(Value& /*result*/, Property /*property*/, std::string_view /*name*/) {}
  /// Sets a property; `holder` gets what the expression yields.
  virtual void memberAssign(Value& /*holder*/, Property /*property*/, std::string_view /*name*/,
                            const Value& /*newValue*/) {}

  /// Whether it has elements or components at all.
  virtual bool isArray() const { return false; }
  /// Reads element or component `i`, the component of element `element` where this is the whole that it belongs
  /// to. Without one, `result` stays as it is, after a report.
  virtual void getElement(Value& /*result*/, std::int32_t /*element*/, std::int32_t /*i*/) {}
  /// Sets one in the same way. False, after a report, if that can't be done.
  virtual bool setElement(Value& /*result*/, std::int32_t /*element*/, std::int32_t /*i*/,
                          const Value& /*newValue*/) {
    return false;
  }

  /// Gives a value of the script's own the neutral value of its type again. False if it has none that can be reached
  /// so; then a new object is made in its place.
  virtual bool reset() { return false; }
  /// Fills a new value of the script's own with what a constructor was given.
  virtual void constructField(Arguments /*arguments*/) {}
  /// Multiples: adds one more value. False, after a report, if it is of the wrong type.
  virtual bool append(const Value& /*newValue*/) { return false; }

  /// Vectors and multiples of these: copies the whole, or the element, into a value of the script's own. Without such
  /// an element it is false, and the target is a vector as it was, or a new one.
  virtual bool copyVector(Value& /*target*/, std::int32_t /*element*/) const { return false; }

protected:
  VsField() = default;
  /// Over a field of a node, which is kept from going if `keepsNode` is set.
  VsField(SoField* field, bool keepsNode);
  virtual ~VsField();

  /// What of the memory of a toolkit field counts as taken by scripts: the object's own, or, in a node that may go
  /// on without it, the field's.
  Room& roomFor(Room& own, std::size_t bytes) const;

private:
  // Gives the toolkit field a value of the same type, which is not the field's own.
  virtual void postExecute(const Value& /*current*/) {}
  // When the last share goes.
  virtual void dispose() { delete this; }

  std::uint32_t shares = 0;
  SoField* field = nullptr;
  SoFieldContainer* node = nullptr;
};

}  // namespace tessel::script
