// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/elements/SoInt32Element.h>

/// Tells a node during a traversal in which kind of container it stands.
///
/// The low 16 bits say what the current container takes, the bits above hold facts for the whole branch.
/// Each setter keeps the high half and replaces the low half (`enter`), and restores the old value when
/// its children are done.
class TESSEL_API VrmlContainerElement : public SoInt32Element {
  typedef SoInt32Element inherited;
  SO_ELEMENT_HEADER(VrmlContainerElement);

public:
  enum TypeBits : int {
    shape = 0x1,       ///< inside a shape: appearance and geometry act only if set
    appearance = 0x2,  ///< inside an appearance: material and textures act only if set
    coordinate = 0x8,  ///< the geometry takes a Coordinate
    normal = 0x10,     ///< the place of a Normal
    color = 0x20,      ///< the geometry takes a Color
    texCoord = 0x40,   ///< the geometry takes a TextureCoordinate
    fontStyle = 0x80,  ///< the place of a FontStyle
    anchor = 0x10000,  ///< below an Anchor
    all = -1,
  };

  /// Registers the class and enables it in the toolkit's actions; our own enable it themselves.
  static void initClass();
  void init(SoState* state) override;

  /// The bits in force.
  static int get(SoState* state);
  /// True if `bit` is in force.
  static bool has(SoState* state, int bit) { return (get(state) & bit) != 0; }
  /// Sets all bits.
  static void set(SoState* state, SoNode* node, int bits);
  /// Replaces the low half by `lowBits`, keeps the high half; gives the old value for `set` to restore.
  static int enter(SoState* state, SoNode* node, int lowBits);

  /// The value at the start of each traversal, 0 unless changed; gives the old one.
  static int setDefault(int bits);

protected:
  ~VrmlContainerElement() override;
};

namespace tessel {

/// Replaces the low half of the container element for a scope.
class [[nodiscard]] ContainerScope {
public:
  ContainerScope(SoState* s, SoNode* n, int lowBits)
      : state(s), node(n), before(VrmlContainerElement::enter(s, n, lowBits)) {}
  ~ContainerScope() { VrmlContainerElement::set(state, node, before); }
  ContainerScope(const ContainerScope&) = delete;
  ContainerScope& operator=(const ContainerScope&) = delete;

private:
  SoState* state;
  SoNode* node;
  int before;
};

}  // namespace tessel
