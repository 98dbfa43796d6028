#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin::test {

/// A mesh of the given vertices and faces with topology and normals built and not normalised, so
/// that coordinates in a test are the coordinates in the mesh. Box and tolerance are those that
/// leave positions as they are: centre 0, extent 20.
TriangleMesh makeMesh(const std::vector<std::array<float, 3>>& vertices,
                      const std::vector<std::array<int, 3>>& faces);

// --- Tiny meshes, every one small enough to check by hand ---
TriangleMesh emptyMesh();
TriangleMesh pointsOnly();          ///< four vertices, no face
TriangleMesh singleTriangle();      ///< (0,0,0) (1,0,0) (0,1,0)
TriangleMesh twoTriangles();        ///< a unit square cut along the diagonal 0-2
TriangleMesh tetrahedron();         ///< closed, outward
TriangleMesh cube();                ///< closed, outward, side 2 about the origin, 12 faces
TriangleMesh insideOutCube();       ///< the cube with its faces turned inward
TriangleMesh octahedron();          ///< closed, outward, radius 1
TriangleMesh bowTie();              ///< two triangles that share vertex 0 only
TriangleMesh touchingOctahedra();   ///< two closed surfaces that share one vertex, number 0
TriangleMesh threeFacesOnAnEdge();  ///< edge 0-1 used by three faces
TriangleMesh hexagonFan();          ///< interior vertex 0 with six neighbours in the plane z = 0
TriangleMesh degenerateFace();      ///< collinear corners beside a proper triangle
TriangleMesh withNan();             ///< a tetrahedron with one coordinate not a number

// --- Families, sized by a parameter ---
TriangleMesh grid(int columns,
                  int rows);  ///< open, z = 0, unit squares, (columns+1)(rows+1) vertices
TriangleMesh bumpyGrid(int columns, int rows);           ///< the grid with a smooth height field
TriangleMesh icosphere(int level, double radius = 1.0);  ///< closed, 20 x 4^level faces
TriangleMesh torus(int around, int across);              ///< closed, genus 1, radii 3 and 1
/// Closed, outward, side 2 about the origin, every side cut into n x n squares of two faces.
TriangleMesh fineCube(int n);
/// Closed, outward: a turned machine part around the z axis, `around` vertices to a circle. A disc
/// with a boss, a bore through both and a recess around the bore from below. The foot of the boss
/// and its outer rim are filleted in steps of 10 degrees; every other corner of the section is a
/// right angle.
TriangleMesh flangedHub(int around);

/// The mesh with every coordinate moved by up to `amplitude`, evenly spread and the same each time;
/// normals are brought up to date.
TriangleMesh jittered(TriangleMesh mesh, double amplitude);

/// A named mesh of a family that a test loops over.
struct NamedMesh {
  std::string name;
  TriangleMesh mesh;
};
std::vector<NamedMesh> closedMeshes();
std::vector<NamedMesh> openMeshes();
/// Non-manifold, degenerate, twisted, not finite, of any size, unused vertices, invalid faces.
std::vector<NamedMesh> hostileMeshes();

/// V - E + F over used vertices and valid faces.
int eulerCharacteristic(const TriangleMesh& mesh);

}  // namespace gravlin::test
