// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/SbString.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFString.h>

/// FontStyle: the font and the layout of a Text.
class TESSEL_API VrmlFontStyle : public tessel::NodeClass<VrmlFontStyle, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "FontStyle";
  static std::span<const tessel::FieldSpec> fields();

  SoSFFloat size;        ///< field, 1: height of a line
  SoSFString family;     ///< field, SERIF: or SANS, TYPEWRITER
  SoSFString style;      ///< field, PLAIN: or BOLD, ITALIC, BOLD ITALIC
  SoSFBool horizontal;   ///< field, TRUE: characters advance along x; FALSE: along y
  SoSFBool leftToRight;  ///< field, TRUE: towards positive x
  SoSFBool topToBottom;  ///< field, TRUE: towards negative y
  SoSFString language;   ///< field, empty: without effect
  SoMFString justify;    ///< field, one BEGIN: alignment along and across the lines
  SoSFFloat spacing;     ///< field, 1: distance of lines, in heights of a line

  static void initClass();

  VrmlFontStyle();

  /// The name of the font that `family` and `style` stand for, such as "Helvetica-Bold". Both may be in lower case;
  /// what is none of theirs gives "Utopia-Regular".
  SbString getFontName() const;
  /// Puts name and size of the font into the state of an action, unless they are overridden there. Does nothing where
  /// no FontStyle stands.
  void setElements(SoAction* action);

protected:
  ~VrmlFontStyle() override;
};
