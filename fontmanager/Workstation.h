#pragma once

#include <string>

namespace Vellumine {

// The identity under which a workstation records its activations in a shared library: the
// systemd machine ID (/etc/machine-id), stable across reboots and unique per installation.
// VELLUMINE_MACHINE_ID overrides it, so that two users' worlds on one machine can stand for
// two workstations; without either, the host name stands in.
std::string workstationId();

} // namespace Vellumine
