#!/usr/bin/env bash
# Installs the build into a scratch prefix and checks what a desktop and a user find there.
# Usage: install_check.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1 src=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
id=io.github.merida.Merida

cmake --install "$build" --prefix "$prefix" >/dev/null
for f in bin/merida bin/merida-cli share/merida/Merida.htm share/merida/translations/merida_ja.qm \
         share/man/man1/merida.1.gz share/man/man1/merida-cli.1.gz share/doc/merida/copyright \
         "share/applications/$id.desktop" "share/metainfo/$id.metainfo.xml" \
         "share/icons/hicolor/scalable/apps/$id.svg"; do
  [ -s "$prefix/$f" ] || { echo "missing after install: $f"; exit 1; }
done
[ -x "$prefix/bin/merida" ] && [ -x "$prefix/bin/merida-cli" ] || { echo "programs not executable"; exit 1; }

# The installed command line works from anywhere.
work=$(mktemp -d)
trap 'rm -rf "$prefix" "$work"' EXIT
answer=$(cd "$work" && "$prefix/bin/merida-cli" calc '1+2')
[ "$answer" = 3 ] || { echo "installed merida-cli calc 1+2 printed '$answer'"; exit 1; }

appstreamcli validate --no-net "$prefix/share/metainfo/$id.metainfo.xml"
desktop-file-validate "$prefix/share/applications/$id.desktop"
grep -q "^Icon=$id\$" "$prefix/share/applications/$id.desktop" || { echo "desktop entry names another icon"; exit 1; }
echo "install check passed"
