#!/usr/bin/env bash
# package.sh BUILD: makes the Debian package of a build, looks whether all is in it, lets its programs run from where
# they are unpacked, and asks lintian for errors (left out where it is not installed).
set -euo pipefail
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$*" >&2; exit 1; }

cpack --config "$build/CPackConfig.cmake" -B "$work" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
package=$(echo "$work"/*.deb)
dpkg-deb -x "$package" "$work/root"
while read -r file; do
  [ -s "$work/root/usr/$file" ] || fail "not in the package: /usr/$file"
done <<'FILES'
bin/orvelles
bin/orvelles-cli
share/applications/orvelles.desktop
share/bash-completion/completions/orvelles-cli
share/doc/orvelles/changelog.gz
share/doc/orvelles/copyright
share/icons/hicolor/scalable/apps/orvelles.svg
share/icons/hicolor/scalable/mimetypes/application-x-orvelle.svg
share/icons/hicolor/symbolic/apps/orvelles-symbolic.svg
share/man/man1/orvelles-cli.1.gz
share/man/man1/orvelles.1.gz
share/metainfo/net.brindleway.Orvelles.metainfo.xml
share/mime/packages/orvelles.xml
share/orvelles/Countries.Orvelle
share/orvelles/orvelles.qch
FILES
depends=$(dpkg-deb -f "$package" Depends)
for needed in libqt6widgets6 libqt6help6 libqt6sql6-sqlite libqt6svg6; do
  [[ "$depends" == *"$needed"* ]] || fail "not among what the package depends on: $needed ($depends)"
done
twice=$(tr ',' '\n' <<<"$depends" | awk '{ print $1 }' | sort | uniq -d)
[ -z "$twice" ] || fail "twice among what the package depends on: $twice ($depends)"
grep -qx 'Exec=orvelles %f' "$work/root/usr/share/applications/orvelles.desktop" || fail "no command to open a file"
icon=$(sed -n 's/^Icon=//p' "$work/root/usr/share/applications/orvelles.desktop")
[ -f "$work/root/usr/share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "no icon of the name $icon"

"$work/root/usr/bin/orvelles" --version
"$work/root/usr/bin/orvelles-cli" check "$work/root/usr/share/orvelles/Countries.Orvelle"
QT_QPA_PLATFORM=offscreen XDG_CONFIG_HOME="$work/config" "$work/root/usr/bin/orvelles" \
  --pictures "$work/shots" "$work/root/usr/share/orvelles/Countries.Orvelle"
[ -n "$(ls "$work/shots")" ] || fail "the installed program showed no window"

if command -v lintian >/dev/null; then
  lintian --allow-root --fail-on error --tag-display-limit 0 "$package"
else
  echo "left out: lintian is not installed"
fi
