// SPDX-License-Identifier: BSD-3-Clause
// Takes the picture of a world without a display: example-picture WORLD.wrl PICTURE.png
#include <tessel/core/VrmlDB.h>
#include <tessel/frame/VrmlNavigationInfo.h>
#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/frame/VrmlTransformedCamera.h>
#include <tessel/frame/VrmlViewpoint.h>
#include <tessel/frame/VrmlViewpointManager.h>
#include <tessel/toolkit/SoRef.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoSeparator.h>
#include <png.h>

#include <cstdio>
#include <vector>

constexpr short width = 640, height = 480;

/// Makes an OpenGL context current that draws into memory.
bool openContext() {
  const auto getDisplay =
      reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
  if (!getDisplay) return false;
  EGLDisplay display = getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  if (!eglInitialize(display, nullptr, nullptr) || !eglBindAPI(EGL_OPENGL_API)) return false;
  const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RED_SIZE, 8, EGL_DEPTH_SIZE, 24, EGL_NONE};
  EGLConfig config;
  EGLint count = 0;
  if (!eglChooseConfig(display, wanted, &config, 1, &count) || count == 0) return false;
  const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
  EGLSurface surface = eglCreatePbufferSurface(display, config, size);
  EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
  return eglMakeCurrent(display, surface, surface, context);
}

/// The world's Viewpoint was bound, or moved: the camera goes there.
void followViewpoint(void* data, const SbMatrix& matrix, int, VrmlViewpoint* viewpoint) {
  auto* camera = static_cast<VrmlTransformedCamera*>(data);
  camera->matrix = matrix;
  camera->position = viewpoint->position.getValue();
  camera->orientation = viewpoint->orientation.getValue();
  camera->heightAngle = viewpoint->fieldOfView.getValue();
}

bool writePng(const char* file, const std::vector<unsigned char>& pixels) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = width, png.height = height;
  png.format = PNG_FORMAT_RGB;
  return png_image_write_to_file(&png, file, 0, pixels.data(), -3 * width, nullptr);  // from the bottom up
}

int main(int argc, char** argv) {
  SoDB::init();
  SoInteraction::init();
  VrmlDB::init();

  SoInput in;
  if (argc != 3 || !in.openFile(argv[1])) return 2;
  tessel::SoRef<SoNode> world(VrmlDB::read(&in));
  if (!world) return 1;
  if (!openContext()) return 3;

  tessel::SoRef<SoSeparator> root(new SoSeparator);
  auto* camera = new VrmlTransformedCamera;
  camera->nearDistance = 0.1f, camera->farDistance = 1000;
  root->addChild(camera);
  auto* headlight = new SoDirectionalLight;
  root->addChild(headlight);
  root->addChild(world.get());

  VrmlSceneManager manager;
  manager.setWindowSize(SbVec2s(width, height));
  manager.setViewportRegion(SbViewportRegion(width, height));
  manager.getViewpointManager()->setCameraCallback(followViewpoint, camera);
  manager.getGLRenderAction()->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
  manager.setSceneGraph(root.get());
  auto* navigation = manager.getCurrentBinding(VrmlNavigationInfo::getClassTypeId());
  headlight->on = static_cast<VrmlNavigationInfo*>(navigation)->headlight.getValue();
  glEnable(GL_DEPTH_TEST);
  for (int frame = 0; frame < 10; ++frame) {
    SoDB::getSensorManager()->processTimerQueue();  // clocks tick, routes run
    SoDB::getSensorManager()->processDelayQueue(TRUE);
    manager.render();
  }

  std::vector<unsigned char> pixels(3 * width * height);
  glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
  return writePng(argv[2], pixels) ? 0 : 3;
}
