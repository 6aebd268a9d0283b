#!/bin/sh
# Makes the pictures in this folder. Needs ImageMagick 6 (convert) and the NVIDIA texture tools (nvcompress, nvassemble).
#
# gradient.png, 8 x 32: the left half goes from red at the bottom to yellow at the top in steps of 8 rows (green 0, 64,
# 160, 255), opaque; the right half is (64, 128, 96) with an alpha of 128.
#
# faces.dds, a cube map of 16 x 16 in DXT5: red, green, blue, yellow, cyan and magenta for +X, -X, +Y, -Y, +Z and -Z,
# each with a white upper left and a black upper right quarter, so that no turned or mirrored face looks right. The
# alpha of +Z is 128, that of the others 255; the cyan there is half as bright, (0, 130, 132), to leave room for
# what a division by alpha adds.
set -e
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

convert -size 8x32 xc:'#ff0000' -fill '#ffff00' -draw 'rectangle 0,0 7,7' -fill '#ffa000' -draw 'rectangle 0,8 7,15' \
    -fill '#ff4000' -draw 'rectangle 0,16 7,23' -fill '#408060' -draw 'rectangle 4,0 7,31' "$work/colour.png"
convert -size 8x32 xc:white -fill '#808080' -draw 'rectangle 4,0 7,31' "$work/mask.png"
convert "$work/colour.png" "$work/mask.png" -alpha off -compose CopyOpacity -composite -strip PNG32:gradient.png

faces=
number=0
for colour in ff0000 00ff00 0000ff ffff00 008284 ff00ff; do
    alpha='#ffffff'
    [ $number = 4 ] && alpha='#808080'
    number=$((number + 1))
    convert -size 16x16 "xc:#$colour" -fill white -draw 'rectangle 0,0 7,7' -fill black -draw 'rectangle 8,0 15,7' \
        "$work/face.png"
    convert -size 16x16 "xc:$alpha" "$work/mask.png"
    convert "$work/face.png" "$work/mask.png" -alpha off -compose CopyOpacity -composite -type TrueColorMatte -flip \
        -orient BottomLeft -compress None "TGA:$work/$number.tga"
    faces="$faces $work/$number.tga"
done
nvassemble -cube $faces -o "$work/cube.dds"
nvcompress -alpha -nocuda -bc3 -nomips "$work/cube.dds" faces.dds
