// Lights the sprite texture of a particle cloud. The colour that leaves is premultiplied with its alpha.
uniform sampler2D spriteTexture;
uniform vec3 sunDir;
uniform vec3 sunColour;
uniform vec3 ambientColour;
uniform vec3 cloudColour;
uniform float brightness;
uniform float cloudOpacity;
uniform float spriteShadowAmount;
uniform float sunGlowAmount;
uniform float sunGlowExponent;
uniform float wireFrame;

varying vec2 texCoord;
varying float spriteBlend;
varying float shadow;
varying float opacity;
varying vec3 viewVector;

void main()
{
    if (wireFrame > 0.5) {
        gl_FragColor = vec4(0.25, 0.25, 0.25, 1.0);
        return;
    }
    vec4 texel = texture2D(spriteTexture, texCoord);
    float lit = clamp(shadow, 0.0, 1.0) * (1.0 - spriteShadowAmount * spriteBlend);
    float glow = sunGlowAmount * pow(max(dot(normalize(viewVector), sunDir), 0.0), sunGlowExponent);
    vec3 light = mix(ambientColour, sunColour, lit) + sunColour * glow * lit;
    float alpha = clamp(texel.a * opacity * cloudOpacity, 0.0, 1.0);
    gl_FragColor = vec4(texel.rgb * cloudColour * light * brightness * alpha, alpha);
}
