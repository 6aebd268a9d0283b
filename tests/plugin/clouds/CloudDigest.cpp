// Prints a checksum of every array of a fixed cloud, made by the plug-in's generation and by the plain one. Built at
// two optimisation levels, whose outputs must be equal: no compiler may change a bit.
#include "Common/Checksums.h"
#include "PlainClouds.h"
#include "RandomClouds.h"

#include <cstdio>

using namespace orvo;

namespace {

template <class T>
std::uint32_t digest(const std::vector<T>& values) {
    return Crc32(values.data(), values.size() * sizeof(T));
}

void print(const char* name, const ParticleCloudGeom& geom) {
    const std::vector<double> bounds{geom.boundCentre.x, geom.boundCentre.y, geom.boundCentre.z, geom.boundRadius};
    std::printf("%s: %d sprites, %08X", name, static_cast<int>(geom.numSprites), digest(bounds));
    for (const auto* values :
         {&geom.positions, &geom.uvCoords, &geom.randoms, &geom.opacities, &geom.shadowCube0, &geom.shadowCube1})
        std::printf(" %08X", digest(*values));
    std::printf("\n");
}

} // namespace

int main() {
    const CloudShapeSet set = randomCloud(20, 2010).set;
    const std::vector<double> bounds{set.boundCentre.x, set.boundCentre.y, set.boundCentre.z, set.boundRadius};
    std::printf("bounds: %08X\n", digest(bounds));
    const Vector3 light{0.6, 0.64, 0.48};
    print("cloud", *GenerateSprites(set, 20000.0, 8000.0, true, light, true, 8000.0, -20000.0));
    print("cloud", plain::GenerateSprites(set, 20000.0, 8000.0, true, light, true, 8000.0, -20000.0));
}
