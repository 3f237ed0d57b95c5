# The Debian package holds the installed layout, names its dependencies from the libraries
# it links, and its programs run from the unpacked tree: vellumine serves, galley loads the
# plug-in with its resources and every font of the sample arrives.
# Arguments: BUILD_DIR
build=$1
source "$(dirname "$0")/world.sh"

(cd "$world" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$world/pkg") >"$world/cpack.log" 2>&1 ||
    fail "cpack: $(cat "$world/cpack.log")"
deb=$(echo "$world"/pkg/galley-vellumine_*_amd64.deb)
expect_file "$deb"

depends=$(dpkg-deb -I "$deb" | sed -n 's/^ Depends: //p')
for library in libc6 libstdc++6 libxml2 libsystemd0 libfontconfig1 libfreetype6 libsqlite3-0 libzip4; do
    [[ ", $depends," == *", $library ("* ]] || fail "Depends lacks $library: $depends"
done
[[ $depends != *galley* ]] || fail "the package depends on its own private libraries: $depends"

root="$world/root"
dpkg-deb -x "$deb" "$root"
for file in usr/bin/galley usr/bin/vellumine usr/bin/notifyutil usr/libexec/vellumine/vellumine-window \
    usr/lib/galley/libgalley-sdk.so usr/lib/galley/libgalley-foundation.so usr/lib/galley/libgalley-platform.so \
    usr/lib/galley/plug-ins/libvellumine-link.so usr/lib/galley/plug-ins/vellumine-link/strings.en \
    usr/share/man/man1/galley.1.gz usr/share/man/man1/vellumine.1.gz \
    usr/share/bash-completion/completions/galley usr/share/bash-completion/completions/vellumine \
    usr/share/mime/packages/org.galley.Galley.xml usr/share/doc/galley-vellumine/copyright; do
    expect_file "$root/$file"
done
grep -qx "Exec=/usr/bin/vellumine serve" "$root/usr/share/applications/org.vellumine.Vellumine.Launcher3.desktop" ||
    fail "the launcher does not start /usr/bin/vellumine"
grep -qx "Exec=/usr/bin/vellumine serve" "$root/usr/share/dbus-1/services/org.vellumine.Vellumine.service" ||
    fail "the D-Bus service does not start /usr/bin/vellumine"
grep -qx "Exec=/usr/bin/galley %f" "$root/usr/share/applications/org.galley.Galley.desktop" ||
    fail "Galley's desktop entry does not start /usr/bin/galley"

# The stripped programs run from the unpacked tree. The launcher there names /usr/bin, so
# the test starts the unpacked vellumine itself.
bin="$root/usr/bin"
in_world "$bin/vellumine" add /usr/share/texmf/fonts/opentype/public/tex-gyre >/dev/null
in_world "$bin/vellumine" serve 2>"$world/serve.err" &
for _ in $(seq 50); do
    in_world "$bin/vellumine" status 2>/dev/null | grep -q '^server: running' && break
    sleep 0.1
done
cp "$VLM_SOURCE_DIR/tests/data/brochure.idml" "$world/brochure.idml"
status=0
in_world "$bin/galley" --batch "$world/brochure.idml" --timeout 30 menu about >"$world/out" 2>"$world/err" || status=$?
[[ $status == 0 ]] || fail "galley --batch from the package ended with status $status: $(cat "$world/err")"
grep -q "Vellumine Link finds the fonts a document misses" "$world/err" ||
    fail "the plug-in's about text (from its string table) was not shown: $(cat "$world/err")"
echo "Debian package: OK"
