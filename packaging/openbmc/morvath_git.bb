# SPDX-License-Identifier: Apache-2.0
SUMMARY = "Flat C view of an OpenBMC platform"
DESCRIPTION = "Gives programs the inventory, sensors and settings of the \
platform: one function per fact or table, blocking D-Bus calls underneath."
LICENSE = "Apache-2.0"
LIC_FILES_CHKSUM = "file://LICENSE;md5=3b83ef96387f14655fc854ddc3c6bd57"

MORVATH_URI ?= "git://git.example.org/morvath.git;protocol=https;branch=main"
SRC_URI = "${MORVATH_URI}"
SRCREV = "${AUTOREV}"
PV = "0.1.0+git${SRCPV}"
S = "${WORKDIR}/git"

DEPENDS = "sdbusplus systemd"

inherit meson pkgconfig bash-completion

# Without `vontel` the library is linked against the simulated RAID management
# library, which is for trying and testing. LIBVONTEL is the recipe of the
# platform's own.
LIBVONTEL ?= "libvontel"
JSON = "nlohmann-json"

# `manual` has pages and completion of the programs, too, where the build can
# run them (qemu-usermode among the MACHINE_FEATURES).
PACKAGECONFIG ??= "tools vontel"
PACKAGECONFIG[bench] = "-Dbench=enabled,-Dbench=disabled,dbus glib-2.0 google-benchmark sdbus-c++"
PACKAGECONFIG[fuzz] = "-Dfuzz=enabled,-Dfuzz=disabled"
PACKAGECONFIG[install_simulated_vontel] = "-Dinstall_simulated_vontel=true,-Dinstall_simulated_vontel=false"
PACKAGECONFIG[manual] = "-Dmanual=auto,-Dmanual=disabled"
PACKAGECONFIG[sim] = "-Dsim=enabled,-Dsim=disabled,cli11 ${JSON}"
PACKAGECONFIG[tests] = "-Dtests=enabled,-Dtests=disabled,gtest"
PACKAGECONFIG[tools] = "-Dtools=enabled,-Dtools=disabled,cli11 ${JSON}"
PACKAGECONFIG[vontel] = "-Dvontel=system,-Dvontel=simulated,${LIBVONTEL},,,install_simulated_vontel"
DEPENDS += "${@bb.utils.contains('PACKAGECONFIG', 'vontel', '', '${JSON}', d)}"

# Warnings are for those who write the code: a newer compiler has others.
EXTRA_OEMESON = "-Dwerror=false"

PACKAGES =+ "${PN}-tools ${PN}-sim ${PN}-vontel ${PN}-zsh-completion"
FILES:${PN}-tools = "${bindir}/morvath"
FILES:${PN}-sim = "${bindir}/morvath-sim ${datadir}/morvath"
FILES:${PN}-vontel = "${libdir}/libvontel.so.*"
FILES:${PN}-zsh-completion = "${datadir}/zsh"
SUMMARY:${PN}-tools = "Shows an OpenBMC platform and changes its settings"
SUMMARY:${PN}-sim = "Runs programs on a simulated OpenBMC platform"
SUMMARY:${PN}-vontel = "Simulated RAID management library"
RDEPENDS:${PN}-sim = "dbus"
