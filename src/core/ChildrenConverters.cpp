// SPDX-License-Identifier: BSD-3-Clause
#include "core/ChildrenConverters.h"

#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/misc/SoNotification.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/VrmlNULL.h>
#include <tessel/toolkit/SoRef.h>

#include "core/HeldNodes.h"

SO_ENGINE_SOURCE(ConvertMFNodeToMFChildren);
SO_ENGINE_SOURCE(ConvertMFChildrenToMFNode);

void ConvertMFNodeToMFChildren::initClass() {
  SO_ENGINE_INIT_CLASS(ConvertMFNodeToMFChildren, SoFieldConverter, "FieldConverter");
  SoDB::addConverter(SoMFNode::getClassTypeId(), VrmlMFChildren::getClassTypeId(), classTypeId);
}

ConvertMFNodeToMFChildren::ConvertMFNodeToMFChildren() {
  SO_ENGINE_CONSTRUCTOR(ConvertMFNodeToMFChildren);
  input.setNum(0);
  input.setContainer(this);
  inputdata->addField(this, "input", &input);
  SO_ENGINE_ADD_OUTPUT(output, VrmlMFChildren);
  isBuiltIn = TRUE;
}

ConvertMFNodeToMFChildren::~ConvertMFNodeToMFChildren() = default;

// The toolkit's field hears of changes inside the nodes too, which are no events.
void ConvertMFNodeToMFChildren::notify(SoNotList* list) {
  const SoNotRec* record = list->getLastRec();
  const bool isEvent = !record || !tessel::isFromHeldNode(input, record->getPrevious());
  if (isEvent && isNotifyEnabled()) evaluateFromNotify();
}

// The change that this makes may come back here round a loop of routes. While a connection is being made, the
// first notification finds no output yet: making it changes nothing. The nodes are taken from the source itself: an
// input that held them would hear of each, and let go of one while that still goes through those who hear of it.
void ConvertMFNodeToMFChildren::evaluateFromNotify() {
  if (converting || output.getNumConnections() == 0) return;
  converting = true;
  const tessel::SoRef<ConvertMFNodeToMFChildren> alive(this);
  SoField* source = nullptr;
  if (!input.getConnectedField(source)) source = &input;
  for (int i = 0; i < output.getNumConnections(); ++i)
    if (output[i]->isConnectionEnabled()) output[i]->copyFrom(*source);
  input.setDirty(FALSE);
  converting = false;
}

void ConvertMFChildrenToMFNode::initClass() {
  SO_ENGINE_INIT_CLASS(ConvertMFChildrenToMFNode, SoFieldConverter, "FieldConverter");
  SoDB::addConverter(VrmlMFChildren::getClassTypeId(), SoMFNode::getClassTypeId(), classTypeId);
}

ConvertMFChildrenToMFNode::ConvertMFChildrenToMFNode() {
  SO_ENGINE_CONSTRUCTOR(ConvertMFChildrenToMFNode);
  SO_ENGINE_ADD_INPUT(input, (nullptr));
  SO_ENGINE_ADD_OUTPUT(output, SoMFNode);
  isBuiltIn = TRUE;
}

ConvertMFChildrenToMFNode::~ConvertMFChildrenToMFNode() = default;

// The input holds no list of its own: it would be that of another node, which may be gone by the next time.
void ConvertMFChildrenToMFNode::evaluate() {
  input.evaluate();
  SoField* source = nullptr;
  if (!input.getConnectedField(source)) return;
  const SoChildList* list = static_cast<VrmlMFChildren*>(source)->getValue();
  if (!list) return;

  std::vector<SoNode*> nodes;
  nodes.reserve(static_cast<std::size_t>(list->getLength()));
  for (int i = 0; i < list->getLength(); ++i) {
    SoNode* child = (*list)[i];
    nodes.push_back(child && child->isOfType(VrmlNULL::getClassTypeId()) ? nullptr : child);
  }
  if (!output.isEnabled()) return;
  const int count = static_cast<int>(nodes.size());
  for (int i = 0; i < output.getNumConnections(); ++i) {
    if (!output[i]->isConnectionEnabled()) continue;
    auto* field = static_cast<SoMFNode*>(output[i]);
    field->setNum(count);
    field->setValues(0, count, const_cast<const SoNode**>(nodes.data()));
  }
}
