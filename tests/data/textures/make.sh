#!/bin/sh
# Makes the pictures in this folder. Needs ImageMagick 6 (convert) and the NVIDIA texture tools (nvcompress, nvassemble).
#
# All show the same 8 x 8 picture, cut at column 4 and below row 3 so that no turned or mirrored copy equals it, and so
# that a block of 4 x 4 pixels holds two colours, which the block formats keep exactly. Alpha, where there is one, is a
# multiple of 17, which 4 bits keep exactly:
#     red, alpha 255 | green, alpha 136     (3 rows)
#     blue, alpha 68 | yellow, alpha 204    (5 rows)
# The grey one has 0, 85 above 170, 255. The cube map's faces are 4 x 4: red, green, blue, yellow, cyan and magenta in
# file order, each with a black top row.
set -e
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

picture() { # top left, top right, bottom left, bottom right, file
    convert -size 8x8 "xc:$4" -fill "$1" -draw 'rectangle 0,0 3,2' -fill "$2" -draw 'rectangle 4,0 7,2' \
        -fill "$3" -draw 'rectangle 0,3 3,7' -depth 8 -strip "$5"
}
picture '#f00' '#0f0' '#00f' '#ff0' "$work/colour.png"
picture '#000' '#555' '#aaa' '#fff' "$work/grey.png"
picture '#fff' '#888' '#444' '#ccc' "$work/mask.png"
convert "$work/colour.png" "$work/mask.png" -alpha off -compose CopyOpacity -composite -strip "PNG32:$work/alpha.png"
cp "$work/alpha.png" alpha.png

# TGA: types 2, 3, 10 and 11, the first row at the bottom or at the top. -orient only declares the order, so that the
# rows of the first have to be turned too.
for orient in BottomLeft TopLeft; do
    for compress in None RLE; do
        for kind in colour alpha grey; do
            options='-type TrueColor'
            [ $kind = alpha ] && options='-type TrueColorMatte'
            [ $kind = grey ] && options='-type Grayscale'
            [ $orient = BottomLeft ] && options="$options -flip"
            convert "$work/$kind.png" $options -orient $orient -compress $compress "$kind-$orient-$compress.tga"
        done
    done
done

# DDS: with all levels.
cp colour-BottomLeft-None.tga "$work/colour.tga"
cp alpha-BottomLeft-None.tga "$work/alpha.tga"
nvcompress -color -nocuda -bc1 "$work/colour.tga" dxt1.dds
nvcompress -fast -alpha -nocuda -bc2 "$work/alpha.tga" dxt3.dds
convert alpha.png -define dds:compression=dxt5 dxt5.dds
nvcompress -alpha -nocuda -rgb -nomips "$work/alpha.tga" bgra.dds
convert "$work/colour.png" -define dds:compression=none -define dds:mipmaps=0 bgr.dds
# A height that has no exact turned form in blocks: the upper six rows.
convert "$work/colour.png" -crop 8x6+0+0 +repage -define dds:compression=dxt1 -define dds:mipmaps=0 dxt1-8x6.dds

faces=
for colour in f00 0f0 00f ff0 0ff f0f; do
    convert -size 4x4 "xc:#$colour" -fill black -draw 'rectangle 0,0 3,0' -flip -orient BottomLeft "TGA:$work/$colour.tga"
    faces="$faces $work/$colour.tga"
done
nvassemble -cube $faces -o "$work/cube.dds"
nvcompress -color -nocuda -bc1 -nomips "$work/cube.dds" cube-dxt1.dds

# Eight bits of luminance: the header by hand, then the grey picture's bytes from the top.
{
    printf 'DDS \174\0\0\0\7\20\0\0\10\0\0\0\10\0\0\0\10\0\0\0\0\0\0\0\0\0\0\0'
    head -c 44 /dev/zero
    printf '\40\0\0\0\0\0\2\0\0\0\0\0\10\0\0\0\377\0\0\0'
    head -c 12 /dev/zero
    printf '\0\20\0\0'
    head -c 16 /dev/zero
    convert "$work/grey.png" -type Grayscale -depth 8 gray:-
} > luminance.dds
