#!/usr/bin/env bash
# install.sh BUILD: installs a build into a folder that only its owner can write to, and uses the sample that comes
# with it: as a user without rights, and as the owner. The sample opens for both, and stays as it is.
set -euo pipefail
build=$1
work=$(mktemp -d)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
fail() { echo "FAILED: $*" >&2; exit 1; }

DESTDIR=$work/root cmake --install "$build" >"$work/log" || { cat "$work/log"; exit 1; }
prefix=$(dirname "$(dirname "$(find "$work/root" -name orvelles-cli -path '*/bin/*')")")
cli=$prefix/bin/orvelles-cli
sample=$prefix/share/orvelles/Countries.Orvelle
[ -f "$sample" ] || fail "the sample is not installed"
chmod 755 "$work"
chmod -R go=u-w "$work/root"
before=$(sha256sum <"$sample")
mkdir -m 777 "$work/own"

# as_user COMMAND...: as a user without rights; root becomes nobody, anybody else is one.
as_user() {
  if [ "$(id -u)" -ne 0 ]; then "$@"; else setpriv --reuid=65534 --regid=65534 --clear-groups "$@"; fi
}
if [ "$(id -u)" -eq 0 ]; then
  as_user true 2>/dev/null || { echo "left out: the rights of root cannot be given up here"; exit 77; }
else
  chmod -R a-w "$prefix/share/orvelles"
fi

export LC_ALL=C.UTF-8 HOME=$work/own XDG_CONFIG_HOME=$work/own/config QT_QPA_PLATFORM=offscreen
as_user "$cli" info "$sample" >"$work/info" || fail "a user cannot read the sample"
grep -q . "$work/info" || fail "nothing is told of the sample"
as_user "$cli" check "$sample" || fail "the check finds something in the sample"
[ "$(as_user "$cli" cards "$sample" | wc -l)" -gt 100 ] || fail "the sample has hardly a card"
as_user "$cli" convert "$sample" "$work/own/copy.Orvelle" || fail "a user cannot make a copy of the sample"
as_user "$cli" check "$work/own/copy.Orvelle" || fail "the copy is not sound"
as_user "$prefix/bin/orvelles" --pictures "$work/own/shots" "$sample" 2>"$work/pictures.log" ||
  { cat "$work/pictures.log"; fail "the window does not open the sample for a user"; }
[ -n "$(ls "$work/own/shots")" ] || fail "the window showed nothing of the sample"

# Nobody writes to it: neither a user nor who may write everywhere.
for run in as_user env; do
  if "$run" "$cli" convert "$work/own/copy.Orvelle" "$sample" 2>"$work/err"; then fail "the sample was written to"; fi
  grep -q 'belongs to the program' "$work/err" || { cat "$work/err"; fail "the refusal does not say why"; }
done
[ "$before" = "$(sha256sum <"$sample")" ] || fail "the sample has changed"
[ -z "$(find "$prefix/share/orvelles" -name 'Countries*' ! -name Countries.Orvelle)" ] || fail "something lies beside it"
