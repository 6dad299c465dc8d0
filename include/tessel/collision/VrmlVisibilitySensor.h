// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/VrmlSensor.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFTime.h>
#include <Inventor/fields/SoSFVec3f.h>

class VrmlVisibilityList;

/// VisibilitySensor: tells when a box of its own coordinates comes into the view and leaves it. What hides
/// the box does not count.
class TESSEL_API VrmlVisibilitySensor : public tessel::NodeClass<VrmlVisibilitySensor, VrmlSensor> {
public:
  static constexpr const char* fileFormatName = "VisibilitySensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f center;    ///< exposedField, 0 0 0: centre of the box
  SoSFVec3f size;      ///< exposedField, 0 0 0: size of the box; the sign of a component does not count
  SoSFBool enabled;    ///< exposedField, TRUE
  SoSFBool isActive;   ///< eventOut, FALSE: the box is in view
  SoSFTime enterTime;  ///< eventOut, 0: frame time of coming into view
  SoSFTime exitTime;   ///< eventOut, 0: frame time of leaving it

  VrmlVisibilitySensor();

  /// Begins a render traversal with the list of the sensors that a world had in view; gives the list that was
  /// in force, for `finishTraversal`.
  static VrmlVisibilityList* startTraversal(VrmlVisibilityList* list);
  /// Ends the traversal, sends what has changed, and puts the outer list back in force.
  static void finishTraversal(VrmlVisibilityList* outer);

protected:
  ~VrmlVisibilitySensor() override;

private:
  static VrmlVisibilityList* listInForce;  // null outside a render traversal
};
