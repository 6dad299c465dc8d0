// SPDX-License-Identifier: BSD-3-Clause
#include "events/RouteProbe.h"

#include "core/NodeClassImpl.h"

namespace tessel::test {

std::span<const FieldSpec> RouteProbe::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&RouteProbe::size>("size", FieldKind::field),
      fieldSpec<&RouteProbe::level>("level", FieldKind::exposedField),
      fieldSpec<&RouteProbe::in>("in", FieldKind::eventIn),
      fieldSpec<&RouteProbe::out>("out", FieldKind::eventOut),
      fieldSpec<&RouteProbe::time>("time", FieldKind::exposedField),
      fieldSpec<&RouteProbe::nodes>("nodes", FieldKind::exposedField),
  };
  return table;
}

RouteProbe::RouteProbe() { setUpFields(); }
RouteProbe::~RouteProbe() = default;

void RouteProbe::notify(SoNotList* list) {
  ++notifications;
  NodeClass::notify(list);
}

ProbeWorld::Registered::Registered() {
  startLibrary();
  static const bool once = (RouteProbe::initClass(), true);
  (void)once;
}

}  // namespace tessel::test

template class tessel::NodeClass<tessel::test::RouteProbe, VrmlNode>;
