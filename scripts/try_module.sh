#!/usr/bin/env bash
# Builds and installs the plug-in as for Maya, against a folder that is laid out like a devkit, and exports scenes with
# what was installed. The devkit's headers and libraries are those of the stand-alone host, so it is the way there that
# is tried (finding the devkit, the plug-in as its target builds it, the module folder), not Maya.
#
# Usage: try_module.sh RELEASE_BUILD FOLDER     FOLDER is made anew
set -euo pipefail
[ $# -eq 2 ] || { echo "Usage: $0 RELEASE_BUILD FOLDER" >&2; exit 2; }
source=$(cd "$(dirname "$0")/.." && pwd)
program=$(realpath "$1")/bin/orvosky
rm -rf "$2/devkit" "$2/installed" "$2/project" "$2/out"
mkdir -p "$2/devkit/include" "$2/devkit/lib" "$2/out"
cd "$2"

cp -r "$source/host/include/maya" devkit/include
for name in OpenMaya OpenMayaUI Foundation; do cp "$(dirname "$program")/liborvohost.so" "devkit/lib/lib$name.so"; done
cmake -S "$source" -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVOSKY_MAYA_SDK="$PWD/devkit"
cmake --build build
cmake --install build --prefix "$PWD/installed" > installed.log

module=$PWD/installed/share/orvosky
# What Maya does with a module: the folder that the file names, below it what each kind of file wants.
grep -qx '+ orvosky [0-9.]* \.' "$module/orvosky.mod"
for wanted in plug-ins/orvosky.so scripts/orvoskyStartup.mel scripts/AEorvosky_SceneFogTemplate.mel icons presets \
  ArtTools/Maya/OrvoSkyTool/shaders; do
  [ -e "$module/$wanted" ] || { echo "The module folder lacks $wanted." >&2; exit 1; }
done

cp -r "$source/examples/project" .
cd project
for scene in cumulus dusk evening aurora; do
  "$program" export "scenes/$scene.ma" "../out/$scene.atmos" --quiet
  LD_LIBRARY_PATH=$(dirname "$program") ORVOSKY_TOOL_ROOT=$module "$program" run --no-plugin --quiet -e "
    loadPlugin \"$module/plug-ins/orvosky.so\"; file -f -o \"scenes/$scene.ma\"; orvosky_UpdateSkySystemCommand;
    orvosky_SaveSkySystemToXMLCommand \"$PWD/../out/module_$scene.atmos\";"
done
cd ../out
for file in [!m]*; do cmp "$file" "module_$file"; done
echo "The module's plug-in exports as the program's own does: $(ls -d [!m]* | tr '\n' ' ')"
