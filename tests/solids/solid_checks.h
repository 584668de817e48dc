#pragma once

// What every test of solids asks of their meshes, independent of the code under test.

#include "solids/mesh/mesh.h"
#include "solids/shapes/transition.h"

#include <gtest/gtest.h>

#include <initializer_list>

// A valid mesh: closed and consistently oriented, each triangle with area, no two triangles meeting but in
// the points and edges that they share, and a positive volume. The message names what is wrong.
testing::AssertionResult isSolid(const solids::Mesh& mesh);
// The same without the search for triangles that meet, which takes the most time.
testing::AssertionResult isClosedAndOriented(const solids::Mesh& mesh);

// Valid, and with this volume. tolerance: of the volume, relative.
void expectSolid(const solids::Mesh& mesh, double volume, double tolerance = 1e-9);

// Of a body between parallel planes whose section's size is a quadratic function of the height.
double prismatoidVolume(double length, double startArea, double middleArea, double endArea);
// Of a regular polygon of 64 sides, which stands for a circle.
double roundArea(double diameter);

// Each point of the faces of one kind lies on one of the other mesh's faces of the other kind, and the other
// way round. tolerance: a distance.
void expectFacesMeet(const solids::Mesh& mesh, solids::FaceKind kind, const solids::Mesh& other,
                     solids::FaceKind otherKind, double tolerance = 1e-9);

// Frames for tests: along a direction, level if it can be, turned by an angle about the direction.
solids::Frame frameAlong(const AcGeVector3d& direction, double turn = 0);
solids::Section rectangle(double width, double height);
solids::Section oval(double width, double height);
solids::Section circle(double diameter);
