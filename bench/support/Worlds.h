// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <Inventor/SbColor.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/SbVec4f.h>

/// Worlds made in code, the same at each call. Each text begins with its header and shows its shapes whole from
/// its Viewpoint.
namespace bench {

/// An IndexedFaceSet of about `triangles` triangles: a slightly rough torus, coordinates and indices only.
std::string faceSet(int triangles);
/// The same with normals, colours and texture coordinates in the file.
std::string faceSetWithAttributes(int triangles);
/// About `faces` faces of three, four and six corners, coloured per face.
std::string mixedFaces(int faces);
/// Points in every form of number, with remarks, commas and odd white space, and `points / 50` Anchors.
std::string lexicalForms(int points);

/// Shapes under a tree of Transforms, as data: to write it out, and to build it by calls.
struct PartTree {
  struct Form {
    SbColor color;
    std::vector<SbVec3f> points;
    std::vector<std::int32_t> indices;
    bool box = false;  ///< a Box in the place of points
  };
  struct Place {
    SbVec3f translation;
    SbVec4f turn;               ///< axis and angle
    bool moved = true;          ///< has a translation
    bool scaled = false;        ///< has a centre and a scale too, and a name
    std::vector<int> children;  ///< places below, by number
    int form = -1;              ///< of a leaf: its form, shared by several
  };
  std::vector<Form> forms;
  std::vector<Place> places;  ///< children before parents
  std::vector<int> top;       ///< the places at file level
  float reach = 1;            ///< radius of the whole
};

/// `parts` small prisms with eight branches at each level; every second one is used again.
PartTree partTree(int parts);
/// One Box under a chain of Transforms.
PartTree chain(int depth);
/// What a file says of it. Its numbers are those of the tree.
std::string textOf(const PartTree& tree);

}  // namespace bench
