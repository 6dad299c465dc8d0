// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <span>
#include <string_view>

#include <Inventor/SoType.h>
#include <Inventor/fields/SoFieldData.h>

class SoField;

namespace tessel {

struct FieldSpec;

/// The identity of a node class, written once: type, field data, factory and kinds of fields.
///
/// A class `Self` derives from `NodeClass<Self, Parent>` and supplies
///
///     static constexpr const char* fileFormatName = "Box";       // its name in a file
///     static std::span<const tessel::FieldSpec> fields();        // its own fields, in the order of writing
///
/// and calls `setUpFields()` at the start of its constructor, which gives every field its default and its
/// container. An abstract class has a protected constructor. A class that only the library makes also has
/// `static constexpr bool standsInNoFile = true;`: its name means nothing in a file. The toolkit knows the
/// type as "Vrml" plus the name in the file, so the toolkit's own names stay the toolkit's.
/// The definitions are in the library: a class's source instantiates them once.
template <class Self, class Parent> class TESSEL_API NodeClass : public Parent {
public:
  using Parent::Parent;

  /// Registers the class. Its parent comes first.
  static void initClass();
  static SoType getClassTypeId();
  SoType getTypeId() const override;
  const char* getFileFormatName() const override;
  /// The kind of a field of this node as the number of a FieldKind, 4 for a field that no class lists.
  int getFieldType(const SoField* field) const override;

protected:
  NodeClass();
  ~NodeClass() override;

  /// Defaults, container and, at the first instance, the class's field data.
  void setUpFields();

  const SoFieldData* getFieldData() const override;
  static const SoFieldData** getFieldDataPtr();
  const FieldSpec* findField(std::string_view name) const override;

private:
  static void* createInstance();

  // Both live as long as the process.
  static SoType classTypeId;
  static SoFieldData* fieldData;
};

}  // namespace tessel
