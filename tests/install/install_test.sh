#!/usr/bin/env bash
# Installs the build into a fresh root (DESTDIR, prefix /usr) and checks it
# as a user's machine would see it: every file in its standard place, the
# desktop entry and AppStream metadata valid, the man pages readable, and
# the installed satwalk started offscreen on its own data (no
# SATWALK_DATA_DIR), with one snapshot. Exit 77 (skipped) without the
# validators.
#   install_test.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
source=$(cd "$2" && pwd)

for tool in desktop-file-validate appstreamcli; do
  if ! command -v "$tool" >/dev/null; then
    echo "install_test: $tool is missing (scripts/setup installs it); skipped"
    exit 77
  fi
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
DESTDIR=$root cmake --install "$build" --prefix /usr >/dev/null

id=$(sed -n 's/^set(SATWALK_APP_ID "\(.*\)")$/\1/p' "$source/cmake/Install.cmake")
usr=$root/usr
for f in bin/satwalk bin/satwalk-tool lib/satwalk/satwalk_gdal.so \
         share/satwalk/alarm.wav share/satwalk/map/world-land-50m.txt \
         share/satwalk/demo/demo-drive.nmea "share/satwalk/demo/map/Ref Pt_west-lake-demo.rpt" \
         share/satwalk/demo/map/west-lake-demo.png share/satwalk/demo/poi/Restaurant.csv \
         share/man/man1/satwalk.1.gz share/man/man1/satwalk-tool.1.gz \
         "share/applications/$id.desktop" "share/metainfo/$id.metainfo.xml" \
         "share/icons/hicolor/scalable/apps/$id.svg" \
         "share/icons/hicolor/48x48/apps/$id.png" "share/icons/hicolor/128x128/apps/$id.png"; do
  [ -s "$usr/$f" ] || { echo "install_test: $f is not installed"; exit 1; }
done
# Nothing of the source tree's tools comes along.
if find "$usr/share/satwalk" -name '*.py' -o -name '*.cpp' | grep -q .; then
  echo "install_test: generator sources installed"; exit 1
fi

desktop-file-validate "$usr/share/applications/$id.desktop"
appstreamcli validate --no-net "$usr/share/metainfo/$id.metainfo.xml" >/dev/null

# The man pages render without a warning, and name every option --help does.
if command -v groff >/dev/null; then
  for page in satwalk satwalk-tool; do
    warnings=$(zcat "$usr/share/man/man1/$page.1.gz" | groff -man -Tutf8 -ww -z 2>&1)
    [ -z "$warnings" ] || { echo "install_test: $page.1: $warnings"; exit 1; }
  done
fi
[ "$("$usr/bin/satwalk-tool" --version)" = "$("$build/tools/satwalk-tool" --version)" ]
# GDAL's module is opened from its installed place, not from the build tree.
map="$usr/share/satwalk/demo/map/west-lake-demo.png"
opened=$(LD_DEBUG=files "$usr/bin/satwalk-tool" map --image "$map" 2>&1 >/dev/null |
         sed -n 's/.*file=\(.*satwalk_gdal\.so\).*/\1/p' | head -1)
[ "$opened" = "$usr/bin/../lib/satwalk/satwalk_gdal.so" ] ||
  { echo "install_test: GDAL's module opened from '$opened'"; exit 1; }

# The installed program on its installed data: the demo drive replaced by a
# stretch from its middle, where there is a fix, so that its position shows
# which file was played.
nmea=$usr/share/satwalk/demo/demo-drive.nmea
sed -n '2000,2400p' "$source/resources/demo/demo-drive.nmea" >"$nmea"
home=$work/home
mkdir -p -m 700 "$home"
printf 'key 1\nwait 1500\nstate %s\nsnapshot %s\nquit\n' "$work/state.json" "$work/shot.png" \
  >"$work/script.txt"
(cd "$work" && env -u SATWALK_DATA_DIR -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=offscreen \
  HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_RUNTIME_DIR="$home" \
  SATWALK_INSTANCE_NAME="satwalk-install-$$" \
  "$usr/bin/satwalk" --replay --replay-rate 10 --script "$work/script.txt")
[ -s "$work/shot.png" ] || { echo "install_test: no snapshot"; exit 1; }
latitude=$(grep -o '"latitude":"[0-9.]*"' "$work/state.json" | head -1 | cut -d'"' -f4)
[ -n "$latitude" ] && grep -q ",$latitude,[NS]," "$nmea" || {
  echo "install_test: the installed program did not play its installed demo drive" \
    "(latitude '$latitude')"
  exit 1
}
# The Debian package: the libraries the programs link are its dependencies.
if command -v dpkg-shlibdeps >/dev/null && command -v file >/dev/null; then
  cpack -G DEB -B "$work/deb" --config "$build/CPackConfig.cmake" >/dev/null
  depends=$(dpkg-deb -f "$work"/deb/satwalk_*.deb Depends)
  for lib in libqt6widgets6 libqt6multimedia6 libexpat1 libgeographiclib libgdal qt6-qpa-plugins; do
    [[ $depends == *"$lib"* ]] || { echo "install_test: the package misses $lib: $depends"; exit 1; }
  done
  dpkg-deb -x "$work"/deb/satwalk_*.deb "$work/deb-root"
  [ -x "$work/deb-root/usr/bin/satwalk" ] && [ -s "$work/deb-root/usr/share/satwalk/alarm.wav" ]
fi
echo "install_test: installed, validated, and ran at latitude $latitude"
