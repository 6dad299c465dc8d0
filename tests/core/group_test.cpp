// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstdlib>
#include <numbers>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoGetMatrixAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/core/VrmlBillboard.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlLOD.h>
#include <tessel/core/VrmlSwitch.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/core/VrmlWorldInfo.h>
#include <tessel/events/VrmlNotifySensor.h>
#include <tessel/toolkit/Scoped.h>

#include "support/Drawing.h"
#include "support/TestWorld.h"

using tessel::SoRef;
using tessel::test::TestWorld;

namespace {

// A host's world in a static object goes when everything that was made after that object is gone.
struct StaticHost {
  SoRef<VrmlGroup> world;
  ~StaticHost() {
    world->addChild(new VrmlWorldInfo);
    world->getKidType();
    world->removeAllChildren();
  }
};
[[noreturn]] void endWithAStaticHost() {
  static StaticHost host;
  tessel::test::startLibrary();
  host.world.reset(new VrmlGroup);
  host.world->addChild(new VrmlTransform);
  std::exit(0);
}

TEST(Group, OfAStaticObjectOutlivesAllElse) {
  testing::GTEST_FLAG(death_test_style) =
      "threadsafe";  // a program of its own: nothing was asked there before
  EXPECT_EXIT(endWithAStaticHost(), testing::ExitedWithCode(0), "");
}

SbBox3f boxOf(SoNode* node) {
  SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
  action.apply(node);
  return action.getBoundingBox();
}

SbMatrix matrixOf(SoNode* node) {
  SoGetMatrixAction action(SbViewportRegion(100, 100));
  action.apply(node);
  return action.getMatrix();
}

void expectNear(const SbVec3f& got, const SbVec3f& expected, float tolerance = 1e-4F) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(got[i], expected[i], tolerance) << "component " << i;
}

constexpr const char* unitBox = "Shape { geometry Box { } }";

TEST(Group, LightsAreDrawnFirstAndSensorsAskedLast) {
  const TestWorld world(
      "Group { children [ TouchSensor { } Group { } DirectionalLight { } PlaneSensor { } "
      "DirectionalLight { on FALSE } WorldInfo { } ] }");
  const auto* group = static_cast<VrmlGroup*>(world.root());
  EXPECT_EQ(group->getRenderOrder(), (std::vector<int>{2, 4, 0, 1, 3, 5}));
  EXPECT_EQ(group->getEventOrder(), (std::vector<int>{1, 2, 4, 5, 0, 3}));
  EXPECT_TRUE(group->hasEnabledGeometricSensors());
  EXPECT_FALSE(static_cast<VrmlGroup*>(TestWorld("Group { children TouchSensor { enabled FALSE } }").root())
                   ->hasEnabledGeometricSensors());
}

TEST(Group, KidTypesFollowTheBranch) {
  const TestWorld world("DEF TOP Group { children DEF INNER Group { children DEF L PointLight { } } }");
  auto* top = world.get<VrmlGroup>("TOP");
  auto* inner = world.get<VrmlGroup>("INNER");
  EXPECT_EQ(top->getKidType(), tessel::KidType::spatialLight);
  inner->removeChild(0);
  EXPECT_EQ(top->getKidType(), 0U);
  const TestWorld sound("Sound { }");
  inner->addChild(static_cast<VrmlNode*>(sound.root()));
  EXPECT_EQ(top->getKidType(), tessel::KidType::sound);
}

TEST(Group, ChildEventsTakeEffectBehindTheNotification) {
  const TestWorld world("DEF G Group { children DEF A Group { } } DEF B Group { } DEF C Group { }");
  auto* group = world.get<VrmlGroup>("G");
  SoNode* added[] = {world.get<VrmlGroup>("B"), world.get<VrmlGroup>("A"), world.get<VrmlGroup>("B")};
  group->addChildren.setValues(0, 3, const_cast<const SoNode**>(added));
  EXPECT_EQ(group->getNumChildren(), 2) << "twice the same and one that is there";
  EXPECT_EQ(group->addChildren.getNum(), 0);

  const SoRef<SoNode> a(world.get<VrmlGroup>("A"));
  group->removeChildren.setValue(a.get());
  EXPECT_EQ(group->findChild(static_cast<VrmlNode*>(a.get())), -1);
  EXPECT_EQ(group->removeChildren.getNum(), 0);

  VrmlGroup::doChildEvents = 0;
  group->addChildren.setValue(world.get<VrmlGroup>("C"));
  VrmlGroup::doChildEvents = 1;
  EXPECT_EQ(group->getNumChildren(), 1);
  EXPECT_EQ(group->addChildren.getNum(), 0) << "consumed all the same";
}

TEST(Group, ChangesOfChildrenAreReportedThroughTheField) {
  const TestWorld world("DEF G Group { }");
  struct Heard {
    SoField* field = nullptr;
    int times = 0;
  } heard;
  VrmlNotifySensor sensor(
      [](void* data, SoSensor* s) {
        auto* h = static_cast<Heard*>(data);
        h->field = static_cast<VrmlNotifySensor*>(s)->getTriggerField();
        ++h->times;
      },
      &heard);
  auto* group = world.get<VrmlGroup>("G");
  sensor.attach(group);
  SoRef<VrmlNode> child(new VrmlWorldInfo);
  group->addChild(child.get());
  EXPECT_EQ(heard.field, &group->children);
  EXPECT_EQ(heard.times, 1);
  group->insertChild(new VrmlGroup, 0);
  EXPECT_EQ(group->findChild(child.get()), 1);
  group->replaceChild(child.get(), new VrmlGroup);
  group->removeChild(-1);
  EXPECT_EQ(group->getNumChildren(), 2);
  EXPECT_EQ(heard.times, 3);
  sensor.detach();
}

TEST(Group, BoxesAreCachedAndFollowChanges) {
  const TestWorld world(
      std::string_view(std::string("DEF G Group { children DEF T Transform { translation 5 0 0 children ") +
                       unitBox + " } }"));
  auto* group = world.get<VrmlGroup>("G");
  for (int again = 0; again < 2; ++again) expectNear(boxOf(group).getCenter(), SbVec3f(5, 0, 0));
  world.get<VrmlTransform>("T")->translation.setValue(0, 7, 0);
  expectNear(boxOf(group).getCenter(), SbVec3f(0, 7, 0));
  group->removeAllChildren();
  EXPECT_TRUE(boxOf(group).isEmpty());
}

TEST(Group, ADeclaredBoxHidesTheChildren) {
  const TestWorld world(
      std::string_view(std::string("Group { bboxCenter 1 1 1 bboxSize 2 4 6 children ") + unitBox + " }"));
  expectNear(boxOf(world.root()).getMin(), SbVec3f(0, -1, -2));
  expectNear(boxOf(world.root()).getMax(), SbVec3f(2, 3, 4));
}

TEST(Group, DefaultsOfABoxThatAreWrittenOutAreNoBox) {
  for (const char* fields : {"bboxSize -1 -1 -1", "bboxCenter 0 0 0", "bboxCenter 5 5 5 bboxSize -1 -1 -1"}) {
    const TestWorld world(std::string("Group { ") + fields + " children " + unitBox + " }");
    expectNear(boxOf(world.root()).getMax(), SbVec3f(1, 1, 1));
  }
}

TEST(Group, NoEventMakesAGroupItsOwnDescendant) {
  const TestWorld world("DEF A Group { children DEF M Transform { children DEF B Group { } } }");
  auto* inner = world.get<VrmlGroup>("B");
  inner->addChildren.setValue(world.get<VrmlGroup>("A"));
  inner->addChildren.setValue(inner);
  EXPECT_EQ(inner->getNumChildren(), 0);
  EXPECT_EQ(world.messages.count("was not added to a group that stands below it"), 2);
}

TEST(Group, NorDoesOneToTheChildrenOfASwitchOrALOD) {
  const TestWorld world(
      "DEF A Group { children [ DEF S Switch { choice WorldInfo { } } DEF L LOD { level WorldInfo { } } ] }");
  SoNode* const above[] = {world.get<VrmlGroup>("A")};
  world.get<VrmlSwitch>("S")->choice.setChildren(above);
  world.get<VrmlLOD>("L")->level.setChildren(above);
  EXPECT_EQ(world.get<VrmlSwitch>("S")->getNumChildren(), 0);
  EXPECT_EQ(world.get<VrmlLOD>("L")->getNumChildren(), 0);
  EXPECT_EQ(world.messages.count("was not added to a group that stands below it"), 2);
}

TEST(Group, EventsBuildNoDeeperWorldThanAReadDoes) {
  const TestWorld world("DEF A Group { children DEF B Group { } }");
  const tessel::ScopedValue<int> limit(VrmlBaseGroup::maxLevels, 5);
  auto* lowest = world.get<VrmlGroup>("B");
  for (int level = 3; level <= 5; ++level) {
    auto* next = new VrmlGroup;
    lowest->addChildren.setValue(next);
    ASSERT_EQ(lowest->getNumChildren(), 1) << level;
    lowest = next;
  }
  lowest->addChildren.setValue(new VrmlGroup);
  EXPECT_EQ(lowest->getNumChildren(), 0);
  world.get<VrmlGroup>("A")->addChildren.setValue(new VrmlGroup);
  EXPECT_EQ(world.get<VrmlGroup>("A")->getNumChildren(), 2);
  EXPECT_EQ(world.messages.count("nested more than 5 levels deep"), 1);
}

TEST(Group, WithoutAChildNothingIsAdded) {
  const TestWorld library("Group { }");
  const SoRef<VrmlGroup> group(new VrmlGroup);
  group->addChild(nullptr);
  group->insertChild(nullptr, 0);
  group->insertChild(new VrmlGroup, 7);
  const SoRef<VrmlGroup> other(new VrmlGroup);
  group->insertChild(other.get(), -1);
  group->replaceChild(0, nullptr);
  EXPECT_EQ(group->getNumChildren(), 1);
  EXPECT_EQ(group->findChild(other.get()), -1);
}

TEST(Group, CopiesKeepSharing) {
  const TestWorld world(
      "Group { children [ Group { children DEF W WorldInfo { title \"x\" } } Group { children USE W } ] }");
  const auto* original = world.get<VrmlWorldInfo>("W");
  SoRef<SoNode> copy(VrmlNode::deepCopy(static_cast<VrmlNode*>(world.root()), 1));
  const auto* root = static_cast<VrmlGroup*>(copy.get());
  ASSERT_EQ(root->getNumChildren(), 2);
  const SoNode* first = static_cast<VrmlGroup*>(root->getChild(0))->getChild(0);
  EXPECT_EQ(first, static_cast<VrmlGroup*>(root->getChild(1))->getChild(0));
  EXPECT_NE(first, original);
  EXPECT_EQ(static_cast<const VrmlWorldInfo*>(first)->title.getValue(), "x");
}

TEST(Group, SearchFindsPathsThroughIt) {
  const TestWorld world("Group { children Transform { children DEF X WorldInfo { } } }");
  SoSearchAction search;
  search.setNode(world.get<VrmlWorldInfo>("X"));
  search.apply(world.root());
  ASSERT_TRUE(search.getPath());
  EXPECT_EQ(static_cast<const SoFullPath*>(search.getPath())->getLength(), 3);
}

// A host that has no time left for a part of the world still gets the rest of it.
TEST(GroupGL, APrunedChildKeepsNoOtherFromBeingDrawn) {
  const TestWorld world(
      "Group { children [ DEF A Transform { translation -1 0 0 children DEF S Shape { geometry Box { size 1 "
      "1 1 } "
      "appearance Appearance { material Material { emissiveColor 1 0 0 } } } } "
      "Transform { translation 1 0 0 children USE S } ] }");
  tessel::test::Drawing drawing(world.root());
  drawing.action.setAbortCallback(
      [](void* data) {
        const SoPath* path = static_cast<SoGLRenderAction*>(data)->getCurPath();
        return static_cast<const SoFullPath*>(path)->getTail()->getName() == "A" ? SoGLRenderAction::PRUNE
                                                                                 : SoGLRenderAction::CONTINUE;
      },
      &drawing.action);
  drawing.frame();
  EXPECT_EQ(drawing.at(-1, 0).r, 0);
  EXPECT_EQ(drawing.at(1, 0).r, 255);
}

TEST(Transform, PointsGoThroughAllStagesInOrder) {
  const TestWorld world(
      "Transform { translation 1 2 3 rotation 0 0 1 1.570796 scale 2 3 4 "
      "scaleOrientation 0 0 1 0.785398 center 1 0 0 }");
  auto* t = static_cast<VrmlTransform*>(world.root());
  const auto about = [](const SbVec3f& axis, float angle, const SbVec3f& p) {
    SbVec3f r;
    SbRotation(axis, angle).multVec(p, r);
    return r;
  };
  const SbVec3f p(0.5F, -1, 2), z(0, 0, 1), center(1, 0, 0);
  SbVec3f q = about(z, -0.785398F, p - center);
  q = SbVec3f(q[0] * 2, q[1] * 3, q[2] * 4);
  q = about(z, 1.570796F, about(z, 0.785398F, q)) + center + SbVec3f(1, 2, 3);

  SbMatrix m, inverse;
  SbVec3f got;
  matrixOf(t).multVecMatrix(p, got);
  expectNear(got, q);
  t->getTranslationSpaceMatrix(m, inverse);
  m.multVecMatrix(p, got);
  expectNear(got, q);
  inverse.multVecMatrix(q, got);
  expectNear(got, p);
}

TEST(Transform, UnusedFieldsCostNothingAndDoNothing) {
  const TestWorld world("Transform { scaleOrientation 0 0 1 1 center 4 5 6 }");
  EXPECT_TRUE(matrixOf(world.root()).equals(SbMatrix::identity(), 1e-5F));
}

TEST(Transform, AMatrixBecomesFieldsAndBack) {
  tessel::test::startLibrary();
  SoRef<VrmlTransform> t(new VrmlTransform);
  t->center.setValue(1, 2, 3);
  SbMatrix m;
  m.setTransform(SbVec3f(4, 5, 6), SbRotation(SbVec3f(1, 1, 0), 0.7F), SbVec3f(1, 2, 3),
                 SbRotation(SbVec3f(0, 1, 0), 0.4F));
  t->setMatrix(m);
  EXPECT_TRUE(matrixOf(t.get()).equals(m, 1e-3F));
  EXPECT_EQ(t->center.getValue(), SbVec3f(1, 2, 3));
  t->recenter(SbVec3f(-7, 0, 1));
  EXPECT_TRUE(matrixOf(t.get()).equals(m, 1e-3F));
  EXPECT_EQ(t->center.getValue(), SbVec3f(-7, 0, 1));

  const tessel::test::Messages messages;
  SbMatrix singular = SbMatrix::identity();
  singular.setScale(SbVec3f(0, 0, 0));
  const SbVec3f before = t->translation.getValue();
  t->setMatrix(singular);
  EXPECT_EQ(messages.count("Can't factor given matrix"), 1);
  EXPECT_EQ(t->translation.getValue(), before);

  SoRef<VrmlTransform> plain(new VrmlTransform);
  m.setTranslate(SbVec3f(1, 0, 0));
  plain->setMatrix(m);
  EXPECT_TRUE(plain->rotation.isDefault());
}

// What the matrix below a Billboard turns z and y into, for a viewer at a place who looks at the origin.
struct Turned {
  SbVec3f z, y;
};

Turned turnedFor(VrmlNode* billboard, const SbVec3f& viewer) {
  SoRef<SoSeparator> root(new SoSeparator);
  auto* camera = new SoPerspectiveCamera;
  root->addChild(camera);
  root->addChild(billboard);
  camera->position = viewer;
  camera->pointAt(SbVec3f(0, 0, 0));
  Turned turned;
  SoCallbackAction action;
  action.addPreCallback(
      VrmlWorldInfo::getClassTypeId(),
      [](void* data, SoCallbackAction* a, const SoNode*) {
        auto* t = static_cast<Turned*>(data);
        a->getModelMatrix().multDirMatrix(SbVec3f(0, 0, 1), t->z);
        a->getModelMatrix().multDirMatrix(SbVec3f(0, 1, 0), t->y);
        return SoCallbackAction::CONTINUE;
      },
      &turned);
  action.apply(root.get());
  return turned;
}

TEST(Billboard, TurnsToTheViewer) {
  const TestWorld upright("Billboard { children WorldInfo { } }");
  auto* node = static_cast<VrmlNode*>(upright.root());
  for (float angle : {0.3F, 1.5F, 2.8F, 4.0F, 6.0F}) {
    const SbVec3f viewer(10 * std::sin(angle), 3, 10 * std::cos(angle));
    const Turned turned = turnedFor(node, viewer);
    expectNear(turned.z, SbVec3f(std::sin(angle), 0, std::cos(angle)), 1e-3F);
    expectNear(turned.y, SbVec3f(0, 1, 0), 1e-3F);
  }
  const SbRotation kept = static_cast<VrmlBillboard*>(node)->getRotationAmount();
  turnedFor(node, SbVec3f(0, 10, 0.01F));
  EXPECT_TRUE(static_cast<VrmlBillboard*>(node)->getRotationAmount().equals(kept, 1e-6F))
      << "the viewer stands on the axis";

  const TestWorld facing("Billboard { axisOfRotation 0 0 0 children WorldInfo { } }");
  SbVec3f toViewer(3, 4, 5);
  const Turned turned = turnedFor(static_cast<VrmlNode*>(facing.root()), toViewer);
  toViewer.normalize();
  expectNear(turned.z, toViewer, 1e-3F);
  SbVec3f up = SbVec3f(0, 1, 0) - toViewer * toViewer[1];
  up.normalize();
  expectNear(turned.y, up, 1e-3F);

  const TestWorld fixed("Billboard { axisOfRotation 0 0 1 children WorldInfo { } }");
  expectNear(turnedFor(static_cast<VrmlNode*>(fixed.root()), SbVec3f(5, 5, 5)).y, SbVec3f(0, 1, 0));
}

TEST(Billboard, IsCountedWithoutAPlaceInSpace) {
  const TestWorld world("Billboard { children Shape { geometry Box { } } }");
  VrmlCountAction count;
  count.apply(world.root());
  EXPECT_EQ(count.numTriangles, 12);
}

TEST(Billboard, ItsBoxHoldsTheChildrenInAllRotations) {
  const TestWorld world(std::string_view(std::string("Billboard { children ") + unitBox + " }"));
  const float r = std::sqrt(3.0F);
  expectNear(boxOf(world.root()).getMax(), SbVec3f(r, r, r));
  expectNear(boxOf(world.root()).getMin(), SbVec3f(-r, -r, -r));
}

}  // namespace
