// SPDX-License-Identifier: BSD-3-Clause
#include "Registration.h"

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/actions/VrmlRenderAction.h>
#include <tessel/collision/VrmlCollision.h>
#include <tessel/collision/VrmlProximitySensor.h>
#include <tessel/collision/VrmlVisibilitySensor.h>
#include <tessel/core/VrmlBillboard.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlLOD.h>
#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/core/VrmlSFNode.h>
#include <tessel/core/VrmlSwitch.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/core/VrmlWorldInfo.h>
#include <tessel/events/VrmlColorInterpolator.h>
#include <tessel/events/VrmlCoordinateInterpolator.h>
#include <tessel/events/VrmlFanIn.h>
#include <tessel/events/VrmlInterpEvalManager.h>
#include <tessel/events/VrmlInterpolator.h>
#include <tessel/events/VrmlNormalInterpolator.h>
#include <tessel/events/VrmlOrientationInterpolator.h>
#include <tessel/events/VrmlPositionInterpolator.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/events/VrmlScalarInterpolator.h>
#include <tessel/events/VrmlSensor.h>
#include <tessel/events/VrmlTimeSensor.h>
#include <tessel/frame/VrmlBackground.h>
#include <tessel/frame/VrmlBindingNode.h>
#include <tessel/frame/VrmlFog.h>
#include <tessel/frame/VrmlNavigationInfo.h>
#include <tessel/frame/VrmlTransformedCamera.h>
#include <tessel/frame/VrmlViewpoint.h>
#include <tessel/output/VrmlWriteGroup.h>
#include <tessel/pointing/VrmlAnchor.h>
#include <tessel/pointing/VrmlCylinderSensor.h>
#include <tessel/pointing/VrmlGeometricSensor.h>
#include <tessel/pointing/VrmlLocateHighlight.h>
#include <tessel/pointing/VrmlPlaneSensor.h>
#include <tessel/pointing/VrmlSphereSensor.h>
#include <tessel/pointing/VrmlTouchSensor.h>
#include <tessel/proto/VrmlExternProtoDef.h>
#include <tessel/proto/VrmlExternProtoInline.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/proto/VrmlProtoDef.h>
#include <tessel/proto/VrmlProtoUse.h>
#include <tessel/script/VrmlScript.h>
#include <tessel/shapes/VrmlAppearance.h>
#include <tessel/shapes/VrmlBox.h>
#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCone.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlCylinder.h>
#include <tessel/shapes/VrmlDirectionalLight.h>
#include <tessel/shapes/VrmlElevationGrid.h>
#include <tessel/shapes/VrmlExtrusion.h>
#include <tessel/shapes/VrmlFontStyle.h>
#include <tessel/shapes/VrmlGeometry.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>
#include <tessel/shapes/VrmlIndexedLineSet.h>
#include <tessel/shapes/VrmlIndexedShape.h>
#include <tessel/shapes/VrmlLight.h>
#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/shapes/VrmlNormal.h>
#include <tessel/shapes/VrmlPointLight.h>
#include <tessel/shapes/VrmlPointSet.h>
#include <tessel/shapes/VrmlShape.h>
#include <tessel/shapes/VrmlSphere.h>
#include <tessel/shapes/VrmlSpotLight.h>
#include <tessel/shapes/VrmlText.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>
#include <tessel/shapes/VrmlVertexShape.h>
#include <tessel/sound/VrmlAudioClip.h>
#include <tessel/sound/VrmlSound.h>
#include <tessel/textures/VrmlImageTexture.h>
#include <tessel/textures/VrmlMovieTexture.h>
#include <tessel/textures/VrmlPixelTexture.h>
#include <tessel/textures/VrmlTexture.h>
#include <tessel/textures/VrmlTextureTransform.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/ChildrenConverters.h"
#include "core/WorldReader.h"
#include "frame/AfterCameraElement.h"
#include "toolkit/TypeNames.h"

namespace tessel {

void registerAll() {
  // Before our own, so that the same names mean ours.
  typeNames().addForeignTypes();

  // Field classes, which every node needs.
  VrmlSFNode::initClass();
  VrmlMFChildren::initClass();

  // What every node's traversals rest on; our actions before the nodes, which enter their methods there.
  VrmlContainerElement::initClass();
  VrmlCollideAction::initClass();
  VrmlCountAction::initClass();
  VrmlRenderAction::initClass();
  VrmlPreTraverseAction::initClass();
  AfterCameraElement::initClass();

  // Nodes, parents first.
  VrmlNode::initClass();
  VrmlShape::initClass();
  VrmlScript::initClass();
  VrmlInterpolator::initClass();
  VrmlColorInterpolator::initClass();
  VrmlOrientationInterpolator::initClass();
  VrmlPositionInterpolator::initClass();
  VrmlCoordinateInterpolator::initClass();
  VrmlNormalInterpolator::initClass();
  VrmlScalarInterpolator::initClass();
  VrmlInterpEvalManager::initClass();
  VrmlBaseGroup::initClass();
  VrmlCullingGroup::initClass();
  VrmlGroup::initClass();
  VrmlCollision::initClass();
  VrmlTransform::initClass();
  VrmlLocateHighlight::initClass();
  VrmlAnchor::initClass();
  VrmlInline::initClass();
  VrmlLOD::initClass();
  VrmlSwitch::initClass();
  VrmlBillboard::initClass();
  VrmlGeometry::initClass();
  VrmlVertexShape::initClass();
  VrmlPointSet::initClass();
  VrmlIndexedShape::initClass();
  VrmlIndexedFaceSet::initClass();
  VrmlIndexedLineSet::initClass();
  VrmlText::initClass();
  VrmlExtrusion::initClass();
  VrmlElevationGrid::initClass();
  VrmlCone::initClass();
  VrmlBox::initClass();
  VrmlCylinder::initClass();
  VrmlSphere::initClass();
  VrmlAppearance::initClass();
  VrmlFontStyle::initClass();
  VrmlMaterial::initClass();
  VrmlTexture::initClass();
  VrmlImageTexture::initClass();
  VrmlPixelTexture::initClass();
  VrmlMovieTexture::initClass();
  VrmlTextureTransform::initClass();
  VrmlColor::initClass();
  VrmlCoordinate::initClass();
  VrmlNormal::initClass();
  VrmlTextureCoordinate::initClass();
  VrmlLight::initClass();
  VrmlDirectionalLight::initClass();
  VrmlPointLight::initClass();
  VrmlSpotLight::initClass();
  VrmlBindingNode::initClass();
  VrmlBackground::initClass();
  VrmlFog::initClass();
  VrmlViewpoint::initClass();
  VrmlNavigationInfo::initClass();
  VrmlSensor::initClass();
  VrmlGeometricSensor::initClass();
  VrmlTimeSensor::initClass();
  VrmlProximitySensor::initClass();
  VrmlVisibilitySensor::initClass();
  VrmlTouchSensor::initClass();
  VrmlCylinderSensor::initClass();
  VrmlPlaneSensor::initClass();
  VrmlSphereSensor::initClass();
  VrmlAudioClip::initClass();
  VrmlSound::initClass();
  VrmlProtoDef::initClass();
  VrmlProtoUse::initClass();
  VrmlExternProtoDef::initClass();
  VrmlExternProtoInline::initClass();
  VrmlWorldInfo::initClass();
  VrmlWriteGroup::initClass();
  VrmlTransformedCamera::initClass();
  VrmlNULL::initClass();

  // What stands between fields.
  VrmlFanIn::initClass();
  ConvertMFNodeToMFChildren::initClass();
  ConvertMFChildrenToMFNode::initClass();

  // Statements that are no nodes.
  registerStatement("ROUTE", [](WorldReader& reader) { return VrmlRoute::read(reader) != 0; });
}

}  // namespace tessel
