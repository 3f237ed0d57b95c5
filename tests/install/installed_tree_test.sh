# An installed tree works on its own: installed into a temporary prefix, its D-Bus service
# lets a bus start the installed vellumine; galley finds its libraries, the plug-in and its
# resources, and through the installed launcher starts the installed vellumine, which
# activates the sample's missing fonts; moved elsewhere, the tree still works, and a stale
# plug-in beside the real one is reported once and skipped.
# Arguments: BUILD_DIR STALE_PLUGIN
build=$1
stale_plugin=$2
source "$(dirname "$0")/world.sh"

prefix="$world/prefix"
cmake --install "$build" --prefix "$prefix" >"$world/install.log" 2>&1 ||
    fail "cmake --install: $(cat "$world/install.log")"

for file in bin/galley bin/vellumine bin/notifyutil libexec/vellumine/vellumine-window \
    lib/galley/libgalley-sdk.so lib/galley/libgalley-foundation.so lib/galley/libgalley-platform.so \
    lib/galley/plug-ins/libvellumine-link.so lib/galley/plug-ins/vellumine-link/strings.en \
    lib/galley/plug-ins/vellumine-link/FontsDialog.ui \
    share/man/man1/galley.1.gz share/man/man1/vellumine.1.gz \
    share/bash-completion/completions/galley share/bash-completion/completions/vellumine \
    share/mime/packages/org.galley.Galley.xml; do
    expect_file "$prefix/$file"
done
# The server an application launches maps no toolkit; its window is a program of its own.
! ldd "$prefix/bin/vellumine" | grep -q libQt6 || fail "vellumine loads Qt"
"$prefix/bin/vellumine" window --help >/dev/null || fail "vellumine window does not reach vellumine-window"
grep -qx "Exec=$prefix/bin/vellumine serve" "$prefix/share/applications/org.vellumine.Vellumine.Launcher3.desktop" ||
    fail "the launcher does not start the installed vellumine"
grep -qx "Exec=$prefix/bin/vellumine serve" "$prefix/share/dbus-1/services/org.vellumine.Vellumine.service" ||
    fail "the D-Bus service does not start the installed vellumine"
grep -qx "Exec=$prefix/bin/galley %f" "$prefix/share/applications/org.galley.Galley.desktop" ||
    fail "Galley's desktop entry does not start the installed galley"
grep -qx "MimeType=application/vnd.adobe.indesign-idml-package;" "$prefix/share/applications/org.galley.Galley.desktop" ||
    fail "Galley's desktop entry does not open IDML"

# Nothing installed may still look into the build tree for libraries.
for elf in "$prefix"/bin/* "$prefix"/lib/galley/*.so "$prefix"/lib/galley/plug-ins/*.so; do
    ! readelf -d "$elf" | grep -E 'R(UN)?PATH' | grep -qF "$build" || fail "$elf keeps a RUNPATH into $build"
done

# The MIME database takes the type and gives it to *.idml.
cp -r "$prefix/share/mime" "$world/mime"
update-mime-database "$world/mime" 2>"$world/mime.log" || fail "update-mime-database: $(cat "$world/mime.log")"
grep -q ':application/vnd.adobe.indesign-idml-package:\*\.idml$' "$world/mime/globs2" ||
    fail "*.idml is not mapped to the IDML type"

# A bus that reads the installed D-Bus service starts the installed vellumine on a call.
cp "$prefix/share/dbus-1/services/org.vellumine.Vellumine.service" "$world/services/"
in_world dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.ReloadConfig >/dev/null
in_world dbus-send --session --print-reply --dest=org.vellumine.Vellumine / \
    org.freedesktop.DBus.Peer.Ping >/dev/null || fail "the bus did not start vellumine from its service file"
[[ $(readlink "/proc/$(font_manager_pid)/exe") == "$prefix/bin/vellumine" ]] ||
    fail "the bus started another vellumine than the installed one"
stop_font_manager
rm "$world/services/org.vellumine.Vellumine.service"
in_world dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.ReloadConfig >/dev/null
for _ in $(seq 50); do
    [[ -n $(font_manager_pid) ]] || break
    sleep 0.1
done

# The main road from the installed tree alone: the launcher is found in XDG_DATA_DIRS.
world_data_dirs="$prefix/share"
in_world "$prefix/bin/vellumine" add /usr/share/texmf/fonts/opentype/public/tex-gyre >/dev/null
cp "$VLM_SOURCE_DIR/tests/data/brochure.idml" "$world/brochure.idml"
status=0
in_world "$prefix/bin/galley" --batch "$world/brochure.idml" --timeout 30 >"$world/out" 2>"$world/err" || status=$?
[[ $status == 0 ]] || fail "galley --batch from the installed tree ended with status $status: $(cat "$world/err")"
[[ $(readlink "/proc/$(font_manager_pid)/exe") == "$prefix/bin/vellumine" ]] ||
    fail "the font manager that answered is not the installed one"

# Moved elsewhere, with a plug-in of an older SDK beside the real one.
moved="$world/moved"
mv "$prefix" "$moved"
cp "$stale_plugin" "$moved/lib/galley/plug-ins/"
world_data_dirs="$moved/share"
status=0
in_world "$moved/bin/galley" --batch "$world/brochure.idml" menu about >"$world/out" 2>"$world/err" || status=$?
[[ $status == 0 ]] || fail "galley from the moved tree ended with status $status: $(cat "$world/err")"
grep -q "Vellumine Link finds the fonts a document misses" "$world/err" ||
    fail "the plug-in's about text (from its string table) was not shown: $(cat "$world/err")"
stale_name=$(basename "$stale_plugin")
[[ $(grep -c "$stale_name" "$world/err") == 1 ]] ||
    fail "the stale plug-in was not reported exactly once: $(cat "$world/err")"

# A prefix nobody may write to fails with CMake's own message (root is made nobody for it).
locked="$world/locked"
mkdir -m 0555 "$locked"
as_user=()
[[ $EUID != 0 ]] || as_user=(setpriv --reuid=nobody --regid=nogroup --clear-groups)
if "${as_user[@]}" cmake --install "$build" --prefix "$locked/usr" >"$world/locked.log" 2>&1; then
    fail "installing into a prefix without write access succeeded"
fi
grep -q "cannot create directory" "$world/locked.log" || fail "unexpected message: $(cat "$world/locked.log")"
echo "installed tree: OK"
