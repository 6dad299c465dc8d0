// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlGroup.h>

#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFString.h>

/// Anchor: a group whose children act as a link. A click makes a request, which the host takes.
class TESSEL_API VrmlAnchor : public tessel::NodeClass<VrmlAnchor, VrmlGroup> {
public:
  static constexpr const char* fileFormatName = "Anchor";
  static std::span<const tessel::FieldSpec> fields();

  SoMFString url;          ///< exposedField, one empty string: alternatives, the best first
  SoSFString description;  ///< exposedField, empty: what a host may show of the link
  SoMFString parameter;    ///< exposedField, one empty string: "key=value" pairs, such as "target=..."

  VrmlAnchor();

  /// Whether a click waits to be served; if so fills in the absolute URL and the "target" parameter, and
  /// forgets the click.
  int isRequestingFetch(SbString& url, SbString& target);
  /// Whether the pointer came upon the anchor or left it; if so fills in the absolute URL, empty for leaving,
  /// and forgets it.
  int isRequestingHighlight(SbString& url);

  /// Always 1: an anchor counts as an enabled sensor.
  int hasEnabledGeometricSensors() const override { return 1; }

protected:
  ~VrmlAnchor() override;
};
