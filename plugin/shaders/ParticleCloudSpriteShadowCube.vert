// Expands the vertices of a particle cloud into sprites that face the camera, and shades them. Lengths are
// centimetres; positions are those of the current space.
attribute vec3 in_pos;
attribute float in_rand;
attribute vec2 in_uvcoord;
attribute float in_opacity;
attribute vec4 in_shadowCubeData0;
attribute vec4 in_shadowCubeData1;

uniform vec3 eyePoint;
uniform float spriteSize;
uniform vec3 sunDir;
uniform vec3 cloudCenter;
uniform vec3 domeoffset;
uniform float domeopacity;
uniform float sunShadowAmount;
uniform float groundShadowAmount;
uniform float groundShadowOffset;
uniform float enableGroundFade;
uniform float groundFadeStart;
uniform float groundFadeEnd;
uniform float selfShadowAmount;
uniform float selfShadowFalloff;

varying vec2 texCoord;
varying float spriteBlend;
varying float shadow;
varying float opacity;
varying vec3 viewVector;

void main()
{
    vec3 centre = in_pos + domeoffset;
    vec3 eyeDir = normalize(centre - eyePoint);
    vec3 sideDir = normalize(cross(eyeDir, vec3(0.0, 1.0, 0.0)));
    vec3 upDir = cross(sideDir, eyeDir);
    vec3 unit = upDir * (in_uvcoord.y - 0.5) + sideDir * (in_uvcoord.x - 0.5);
    vec3 corner = unit * spriteSize + centre;
    vec3 shadingPoint = unit * spriteSize * 0.7 + centre;

    // One random number mirrors the texture in u and v, and what is left of it varies the sprite's shade.
    texCoord = in_uvcoord;
    float r = in_rand;
    if (r < 0.5)
        texCoord.x = 1.0 - texCoord.x;
    r = mod(r, 0.5) * 2.0;
    if (r < 0.5)
        texCoord.y = 1.0 - texCoord.y;
    spriteBlend = mod(r, 0.5) * 2.0;

    vec3 objectpos = shadingPoint - (cloudCenter + domeoffset);
    float g = normalize(objectpos - vec3(0.0, 1.0, 0.0) * groundShadowOffset).y;
    g = pow(abs(g), 0.25) * sign(g) * 0.5 + 0.5;
    float ground = g * groundShadowAmount + (1.0 - groundShadowAmount);
    float s = dot(normalize(objectpos), sunDir);
    s = s * s * sign(s) * 0.5 + 0.5;
    float sun = s * sunShadowAmount + (1.0 - sunShadowAmount);
    shadow = sun * ground;

    // The eight optical depths stand at the corners of a cube around the sprite's centre, x running fastest.
    vec3 weight = unit + 0.5;
    vec4 alongZ = mix(in_shadowCubeData0, in_shadowCubeData1, weight.z);
    vec2 alongY = mix(alongZ.xy, alongZ.zw, weight.y);
    float depth = mix(alongY.x, alongY.y, weight.x);
    shadow *= exp(-selfShadowFalloff * depth) * selfShadowAmount + (1.0 - selfShadowAmount);

    float fade = smoothstep(groundFadeEnd, groundFadeStart, objectpos.y);
    opacity = in_opacity * domeopacity * mix(1.0, fade, enableGroundFade);
    viewVector = corner - eyePoint;
    gl_Position = gl_ModelViewProjectionMatrix * vec4(corner, 1.0);
}
