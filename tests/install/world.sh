# Sourced by the install tests: a private world under one temporary folder, removed on exit.
#   in_world CMD...   runs CMD with only the world's environment: its own session bus, XDG
#                     folders and fontconfig configuration (DejaVu and URW base35 Type 1, plus
#                     the folder vellumine activates into), and nothing that points into the
#                     build tree. The bus starts only services put into $world/services.
#   font_manager_pid  the process owning org.vellumine.Vellumine on the world's bus, if any.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

world=$(mktemp -d /tmp/galley-install-test-XXXXXX)
bus_pid=""

font_manager_pid() {
    in_world dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus \
        /org/freedesktop/DBus org.freedesktop.DBus.GetConnectionUnixProcessID \
        string:org.vellumine.Vellumine 2>/dev/null | awk '{print $2}'
}
stop_font_manager() {
    # A font manager started through its launcher or by the bus runs detached.
    local pid
    pid=$(font_manager_pid) || true
    [[ -z $pid ]] || kill "$pid" 2>/dev/null || true
}
cleanup() {
    if [[ -n $bus_pid ]]; then
        stop_font_manager
        kill "$bus_pid" 2>/dev/null || true
    fi
    rm -rf "$world"
}
trap cleanup EXIT

mkdir -p "$world/data/fonts" "$world/config" "$world/cache" "$world/system" "$world/home" \
    "$world/services"
mkdir -m 0700 "$world/run"
cat >"$world/fonts.conf" <<CONF
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts/truetype/dejavu</dir>
  <dir>/usr/share/fonts/type1/urw-base35</dir>
  <dir>$world/data/fonts</dir>
  <cachedir>$world/fc-cache</cachedir>
</fontconfig>
CONF
cat >"$world/bus.conf" <<CONF
<busconfig><type>session</type><listen>unix:dir=$world</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>
<allow own="*"/></policy><servicedir>$world/services</servicedir></busconfig>
CONF
# XDG_DATA_DIRS is set by the test: it is where launchers are looked for.
world_data_dirs="$world/system"
world_environment() {
    env -i PATH=/usr/bin:/bin HOME="$world/home" LANG=C.UTF-8 \
        XDG_DATA_HOME="$world/data" XDG_CONFIG_HOME="$world/config" XDG_CACHE_HOME="$world/cache" \
        XDG_RUNTIME_DIR="$world/run" XDG_DATA_DIRS="$world_data_dirs" \
        FONTCONFIG_FILE="$world/fonts.conf" "$@"
}
in_world() {
    world_environment DBUS_SESSION_BUS_ADDRESS="$bus_address" "$@"
}
# Services the bus starts inherit its environment: the world's, never the user's.
{ read -r bus_address; read -r bus_pid; } < <(world_environment dbus-daemon \
    --config-file="$world/bus.conf" --fork --print-address=1 --print-pid=1 2>/dev/null)
