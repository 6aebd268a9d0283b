#pragma once

#include "SkyTool/clouds/CloudGeneration.h"

/// Cloud generation as it is described, loop by loop, without any culling or vector code: what the plug-in's own must
/// match to the bit, and what it is timed against.
namespace orvo::plain {

std::optional<CloudSample> EvaluateShapes(const CloudShapeSet& set, const Vector3& point, double shapeRadius,
                                          bool groundFade, double fadeStart, double fadeEnd, bool shadowMode);

double MarchLight(const CloudShapeSet& set, const Vector3& point, const Vector3& lightDirection, double stepLength,
                  bool groundFade, double fadeStart, double fadeEnd);

/// The sphere around the sprites is the plug-in's own: any exact method gives it.
ParticleCloudGeom GenerateSprites(const CloudShapeSet& set, double particleDensity, double particleSize,
                                  bool withShadowData, const Vector3& lightDirection, bool groundFade,
                                  double groundFadeStartOffset, double groundFadeEndOffset);

/// All sample points of the shapes, on which their bounds rest.
std::vector<Vector3> shapeSamples(std::span<const Matrix44> worldMatrices);

} // namespace orvo::plain
