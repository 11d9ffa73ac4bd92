/// GLSL sources of the OpenGL 3 helper, GLSL 1.50.
///
/// A texel is one 32-bit word of the frame. The texel type of the upload decides the channels of
/// its bytes: bytes 0, 1, 2, 3 are in b, g, r, a, or in a, r, g, b. The formulas below are written
/// for the channels, so one formula can serve both byte orders of a format.
#include "preview/PreviewShaders.h"

const char kVertexShader[] = R"glsl(#version 150

in vec3 vPosition;
in vec2 vTexCoord;
out vec2 fTexCoord;

uniform int v3DFormat; // 3: both eyes, one above the other
uniform bool vFlip;

void main()
{
    gl_Position = vec4(vPosition, 1.0);
    if (!vFlip)
        fTexCoord = vTexCoord;
    else if (v3DFormat == 3 && vTexCoord.y < 0.5)
        fTexCoord = vec2(vTexCoord.x, 0.5 - vTexCoord.y);
    else
        fTexCoord = vec2(vTexCoord.x, 1.0 - vTexCoord.y);
}
)glsl";

const char kFragmentShader[] = R"glsl(#version 150

in vec2 fTexCoord;
out vec4 color;

uniform uint fPixelFormat;
uniform vec4 fFullRange; // not read: the table handles the range
uniform vec2 fFrameSize; // pixels of the picture
uniform sampler2D fTex;  // the frame's words
uniform sampler3D fLut;  // the colour table

// A pixel is a vec4 of Y, Cb, Cr, alpha or R, G, B, 1.

// Columns of a mat4x4 of four neighbouring pixels.
const int kTopLeft = 0;
const int kTopRight = 1;
const int kBottomLeft = 2;
const int kBottomRight = 3;

// Columns of a mat2x4 of two neighbouring pixels.
const int kLeft = 0;
const int kRight = 1;

vec2 scale_coord(vec2 coord)
{
    return vec2((fFrameSize.x - 1) * coord.x, (fFrameSize.y - 1) * coord.y);
}

// Looks a pixel up. 0 falls on the centre of the table's first texel, and 1 on the centre of its
// last.
vec4 apply_lut(vec4 pixel)
{
    float lutSize = float(textureSize(fLut, 0).x);
    float scale = (lutSize - 1.0) / lutSize;
    float offset = 1.0 / (2.0 * lutSize);
    return vec4(texture(fLut, scale * pixel.rgb + offset).rgb, pixel.a);
}

// Interpolates as a filtering sampler does. texelFetch does not filter.
vec4 bilinear(mat4x4 pixels, vec2 weight)
{
    vec4 bottom = mix(pixels[kBottomLeft], pixels[kBottomRight], weight.x);
    vec4 top = mix(pixels[kTopLeft], pixels[kTopRight], weight.x);
    return mix(top, bottom, weight.y);
}

// The last step of all formats that are unpacked here: the table first, then the filter.
vec4 colour_and_filter(mat4x4 pixels, vec2 weight)
{
    for (int i = 0; i < 4; ++i)
        pixels[i] = apply_lut(pixels[i]);
    return bilinear(pixels, weight);
}

vec4 colour_and_filter(mat2x4 topRow, mat2x4 bottomRow, vec2 weight)
{
    return colour_and_filter(
        mat4x4(topRow[kLeft], topRow[kRight], bottomRow[kLeft], bottomRow[kRight]), weight);
}

// --- Texels -------------------------------------------------------------------------------------

ivec2 last_texel(sampler2D tex)
{
    return textureSize(tex, 0) - ivec2(1, 1);
}

// Bytes as 0 to 255.
vec4 fetch_scaled(sampler2D tex, ivec2 position)
{
    return texelFetch(tex, position, 0) * 255.0;
}

// The position, or the nearest that has a texel.
ivec2 clamp_position(sampler2D tex, ivec2 position)
{
    return clamp(position, ivec2(0, 0), last_texel(tex));
}

// --- 4:2:2 --------------------------------------------------------------------------------------
// Pixels of even x have their own chroma. The others have the mean of their neighbours' chroma. So
// three pixels are computed, even, odd and next, and two of them are used.

mat2x4 choose_pair(int x, vec4 even, vec4 odd, vec4 next)
{
    return x % 2 == 0 ? mat2x4(even, odd) : mat2x4(odd, next);
}

// 2vuy, 8 bits. Two pixels per texel: b Cb, g Y0, r Cr, a Y1.
mat2x4 extract_pixels_2vuy(sampler2D tex, ivec2 pos)
{
    ivec2 pair = ivec2(pos.x / 2, pos.y);
    vec4 s0 = texelFetch(tex, clamp_position(tex, pair), 0);
    vec4 s1 = texelFetch(tex, clamp_position(tex, pair + ivec2(1, 0)), 0);
    return choose_pair(pos.x,
                       vec4(s0.g, s0.b, s0.r, 1.0),
                       vec4(s0.a, (s0.b + s1.b) / 2.0, (s0.r + s1.r) / 2.0, 1.0),
                       vec4(s1.g, s1.b, s1.r, 1.0));
}

vec4 texture_2vuy(ivec2 pos, vec2 weights)
{
    return colour_and_filter(extract_pixels_2vuy(fTex, pos),
                             extract_pixels_2vuy(fTex, pos + ivec2(0, 1)), weights);
}

// v210, 10 bits. A texel contains three fields, b the lowest. If two fields share a byte, the upper
// field uses the whole byte: the bits of the lower field stay in it as a fraction.
vec4 unpack_v210(sampler2D tex, ivec2 position)
{
    vec4 u = fetch_scaled(tex, position);
    return vec4((mod(u.a, 64.0) * 16.0 + u.r / 16.0) / 1024.0,
                (mod(u.r, 16.0) * 64.0 + u.g / 4.0) / 1024.0,
                (mod(u.g, 4.0) * 256.0 + u.b) / 1024.0,
                1.0);
}

// Six pixels in four texels, fields in the order b, g, r:
//
//     Cb0 Y0 Cr0 | Y1 Cb2 Y2 | Cr2 Y3 Cb4 | Y4 Cr4 Y5
mat2x4 extract_pixels_v210(sampler2D tex, ivec2 pos)
{
    int n = pos.x % 6;
    int mp = pos.x / 6 * 4;
    ivec2 first = ivec2(mp + n / 2, pos.y);
    vec4 s0 = unpack_v210(tex, first);
    vec4 s1 = unpack_v210(tex, first + ivec2(1, 0));
    // If the row ends with this group, its last chroma replaces the next.
    vec4 s2 = n < 4 || mp + 4 < last_texel(tex).x ? unpack_v210(tex, first + ivec2(2, 0))
                                                  : vec4(s1.g, 0.0, s0.r, 0.0);
    if (n < 2)
        return choose_pair(n,
                           vec4(s0.g, s0.b, s0.r, 1.0),
                           vec4(s1.b, (s0.b + s1.g) / 2.0, (s0.r + s2.b) / 2.0, 1.0),
                           vec4(s1.r, s1.g, s2.b, 1.0));
    if (n < 4)
        return choose_pair(n,
                           vec4(s0.r, s0.g, s1.b, 1.0),
                           vec4(s1.g, (s0.g + s1.r) / 2.0, (s1.b + s2.g) / 2.0, 1.0),
                           vec4(s2.b, s1.r, s2.g, 1.0));
    return choose_pair(n,
                       vec4(s1.b, s0.r, s1.g, 1.0),
                       vec4(s1.r, (s0.r + s2.b) / 2.0, (s1.g + s2.r) / 2.0, 1.0),
                       vec4(s2.g, s2.b, s2.r, 1.0));
}

vec4 texture_v210(ivec2 pos, vec2 weights)
{
    return colour_and_filter(extract_pixels_v210(fTex, pos),
                             extract_pixels_v210(fTex, pos + ivec2(0, 1)), weights);
}

// Ay10, 10 bits with alpha. One pixel per texel, a its lowest byte. From the lowest field: Y, the
// Cb of an even or the Cr of an odd pixel, alpha. Shared bytes leave a fraction here too.
//
// A clamped position may have Cr instead of Cb. So if the last pixel of a row has an odd x, its
// Cb is the mean of a Cb and a Cr.
float luma_Ay10(vec4 s)
{
    return s.a * 1.0 + mod(s.r, 4.0) * 256.0;
}

float chroma_Ay10(vec4 s)
{
    return s.r / 4.0 + mod(s.g, 16.0) * 64.0;
}

float alpha_Ay10(vec4 s)
{
    return s.g / 16.0 + mod(s.b, 64.0) * 16.0;
}

mat2x4 extract_pixels_Ay10(sampler2D tex, ivec2 pos)
{
    ivec2 first = ivec2(pos.x / 2 * 2, pos.y);
    vec4 s0 = fetch_scaled(tex, clamp_position(tex, first));
    vec4 s1 = fetch_scaled(tex, clamp_position(tex, first + ivec2(1, 0)));
    vec4 s2 = fetch_scaled(tex, clamp_position(tex, first + ivec2(2, 0)));
    vec4 s3 = fetch_scaled(tex, clamp_position(tex, first + ivec2(3, 0)));
    float cb0 = chroma_Ay10(s0);
    float cr0 = chroma_Ay10(s1);
    float cb2 = chroma_Ay10(s2);
    float cr2 = chroma_Ay10(s3);
    return choose_pair(pos.x,
                       vec4(luma_Ay10(s0), cb0, cr0, alpha_Ay10(s0)) / 1024.0,
                       vec4(luma_Ay10(s1), (cb0 + cb2) / 2.0, (cr0 + cr2) / 2.0,
                            alpha_Ay10(s1)) / 1024.0,
                       vec4(luma_Ay10(s2), cb2, cr2, alpha_Ay10(s2)) / 1024.0);
}

vec4 texture_Ay10(ivec2 pos, vec2 weights)
{
    return colour_and_filter(extract_pixels_Ay10(fTex, pos),
                             extract_pixels_Ay10(fTex, pos + ivec2(0, 1)), weights);
}

// --- 10-bit RGB, a pixel per texel ---------------------------------------------------------------

// Two bits, then R, G, B, from the highest: the fields of v210.
vec4 unpack_r210(sampler2D tex, ivec2 position)
{
    return unpack_v210(tex, position);
}

// R, G, B, then two bits, from the highest. The bytes are b, g, r, a from the highest, here and in
// R10b: its words are uploaded in the other byte order.
vec4 unpack_R10l(sampler2D tex, ivec2 position)
{
    vec4 u = fetch_scaled(tex, position);
    return vec4((u.g / 64.0 + u.b * 4.0) / 1024.0,
                (mod(u.g, 64.0) * 16.0 + u.r / 16.0) / 1024.0,
                (mod(u.r, 16.0) * 64.0 + u.a / 4.0) / 1024.0,
                1.0);
}

vec4 unpack_R10b(sampler2D tex, ivec2 position)
{
    return unpack_R10l(tex, position);
}

vec4 texture_r210(ivec2 pos, vec2 weights)
{
    return colour_and_filter(mat4x4(unpack_r210(fTex, pos),
                                    unpack_r210(fTex, pos + ivec2(1, 0)),
                                    unpack_r210(fTex, pos + ivec2(0, 1)),
                                    unpack_r210(fTex, pos + ivec2(1, 1))), weights);
}

vec4 texture_R10l(ivec2 pos, vec2 weights)
{
    return colour_and_filter(mat4x4(unpack_R10l(fTex, pos),
                                    unpack_R10l(fTex, pos + ivec2(1, 0)),
                                    unpack_R10l(fTex, pos + ivec2(0, 1)),
                                    unpack_R10l(fTex, pos + ivec2(1, 1))), weights);
}

vec4 texture_R10b(ivec2 pos, vec2 weights)
{
    return colour_and_filter(mat4x4(unpack_R10b(fTex, pos),
                                    unpack_R10b(fTex, pos + ivec2(1, 0)),
                                    unpack_R10b(fTex, pos + ivec2(0, 1)),
                                    unpack_R10b(fTex, pos + ivec2(1, 1))), weights);
}

// --- 12-bit RGB, eight pixels in nine texels ----------------------------------------------------
// Pixel i of a group is in the texels i and i + 1. Its 36 bits begin 4 bits higher in texel i than
// those of the previous pixel in texel i - 1. x, y, z are R, G, B.
//
// Three terms look wrong and are right: the low bits of R in 1 and 3 are not scaled down, and R in 5
// has its low bits from g.

vec4 unpack_R12x_0(vec4 s1, vec4 s2)
{
    return vec4(mod(s1.g, 16.0) * 256.0 + s1.b,
                s1.r * 16.0 + s1.g / 16.0,
                mod(s2.b, 16.0) * 256.0 + s1.a,
                4096.0) / 4096.0;
}

vec4 unpack_R12x_1(vec4 s1, vec4 s2)
{
    return vec4(s1.g * 16.0 + mod(s1.b, 16.0),
                mod(s1.a, 16.0) * 256.0 + s1.r,
                s2.b * 16.0 + s1.a / 16.0,
                4096.0) / 4096.0;
}

vec4 unpack_R12x_2(vec4 s1, vec4 s2)
{
    return vec4(mod(s1.r, 16.0) * 256.0 + s1.g,
                s1.a * 16.0 + s1.r / 16.0,
                mod(s2.g, 16.0) * 256.0 + s2.b,
                4096.0) / 4096.0;
}

vec4 unpack_R12x_3(vec4 s1, vec4 s2)
{
    return vec4(s1.r * 16.0 + mod(s1.g, 16.0),
                mod(s2.b, 16.0) * 256.0 + s1.a,
                s2.g * 16.0 + s2.b / 16.0,
                4096.0) / 4096.0;
}

vec4 unpack_R12x_4(vec4 s1, vec4 s2)
{
    return vec4(mod(s1.a, 16.0) * 256.0 + s1.r,
                s2.b * 16.0 + s1.a / 16.0,
                mod(s2.r, 16.0) * 256.0 + s2.g,
                4096.0) / 4096.0;
}

vec4 unpack_R12x_5(vec4 s1, vec4 s2)
{
    return vec4(s1.a * 16.0 + s1.g / 16.0,
                mod(s2.g, 16.0) * 256.0 + s2.b,
                s2.r * 16.0 + s2.g / 16.0,
                4096.0) / 4096.0;
}

vec4 unpack_R12x_6(vec4 s1, vec4 s2)
{
    return vec4(mod(s2.b, 16.0) * 256.0 + s1.a,
                s2.g * 16.0 + s2.b / 16.0,
                mod(s2.a, 16.0) * 256.0 + s2.r,
                4096.0) / 4096.0;
}

vec4 unpack_R12x_7(vec4 s1, vec4 s2)
{
    return vec4(s2.b * 16.0 + s1.a / 16.0,
                mod(s2.r, 16.0) * 256.0 + s2.g,
                s2.a * 16.0 + s2.r / 16.0,
                4096.0) / 4096.0;
}

mat2x4 extract_pixels_R12x(sampler2D tex, ivec2 pos)
{
    int p = pos.x % 8;
    ivec2 first = ivec2(pos.x / 8 * 9 + p, pos.y);
    vec4 s0 = fetch_scaled(tex, first);
    vec4 s1 = fetch_scaled(tex, first + ivec2(1, 0));
    vec4 s2 = fetch_scaled(tex, first + ivec2(2, 0));
    if (p == 0)
        return mat2x4(unpack_R12x_0(s0, s1), unpack_R12x_1(s1, s2));
    if (p == 1)
        return mat2x4(unpack_R12x_1(s0, s1), unpack_R12x_2(s1, s2));
    if (p == 2)
        return mat2x4(unpack_R12x_2(s0, s1), unpack_R12x_3(s1, s2));
    if (p == 3)
        return mat2x4(unpack_R12x_3(s0, s1), unpack_R12x_4(s1, s2));
    if (p == 4)
        return mat2x4(unpack_R12x_4(s0, s1), unpack_R12x_5(s1, s2));
    if (p == 5)
        return mat2x4(unpack_R12x_5(s0, s1), unpack_R12x_6(s1, s2));
    if (p == 6)
        return mat2x4(unpack_R12x_6(s0, s1), unpack_R12x_7(s1, s2));
    // The right pixel is the first of the next group.
    vec4 s3 = fetch_scaled(tex, first + ivec2(3, 0));
    return mat2x4(unpack_R12x_7(s0, s1), unpack_R12x_0(s2, s3));
}

vec4 texture_R12x(ivec2 pos, vec2 weights)
{
    return colour_and_filter(extract_pixels_R12x(fTex, pos),
                             extract_pixels_R12x(fTex, pos + ivec2(0, 1)), weights);
}

// ------------------------------------------------------------------------------------------------

void main()
{
    vec2 scaled = scale_coord(fTexCoord);
    ivec2 pos = ivec2(floor(scaled.x), floor(scaled.y));
    vec2 weights = vec2(fract(scaled.x), fract(scaled.y));

    switch (fPixelFormat) {
    case 0x32767579u: // 2vuy
        color = texture_2vuy(pos, weights);
        break;
    case 0x76323130u: // v210
        color = texture_v210(pos, weights);
        break;
    case 0x41793130u: // Ay10
        color = texture_Ay10(pos, weights);
        break;
    case 32u:         // 8-bit ARGB
    case 0x42475241u: // BGRA
    case 0x76524742u: // vRGB
    case 0x42475276u: // BGRv
        // A texel is a pixel, so the sampler can filter, and the table comes last.
        color = apply_lut(vec4(texture(fTex, fTexCoord).rgb, 1.0));
        break;
    case 0x72323130u: // r210
        color = texture_r210(pos, weights);
        break;
    case 0x5231306cu: // R10l
    case 0x5231304cu: // R10L
        color = texture_R10l(pos, weights);
        break;
    case 0x52313062u: // R10b
    case 0x52313042u: // R10B
        color = texture_R10b(pos, weights);
        break;
    case 0x52313262u: // R12b
    case 0x52313242u: // R12B
    case 0x5231326cu: // R12l
    case 0x5231324cu: // R12L
        color = texture_R12x(pos, weights);
        break;
    default:
        color = vec4(0.0, 0.0, 0.0, 1.0);
        break;
    }
}
)glsl";
