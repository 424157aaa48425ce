# SPDX-License-Identifier: Apache-2.0
SUMMARY = "Flat C view of an OpenBMC platform"
DESCRIPTION = "Gives programs the inventory, sensors and settings of the \
platform: one function per fact or table, blocking D-Bus calls underneath."
HOMEPAGE = "https://git.example.org/morvath"
LICENSE = "Apache-2.0"
LIC_FILES_CHKSUM = "file://LICENSE;md5=3b83ef96387f14655fc854ddc3c6bd57"

SRC_URI = "git://git.example.org/morvath.git;branch=main;protocol=https;destsuffix=${BP}"
SRCREV = "b3802665c604f2ad74cb48554c57f18a96a43edd"
PV = "0.1.0+git${SRCPV}"

DEPENDS = "nlohmann-json sdbusplus systemd"

inherit meson pkgconfig systemd
# Only then there is a completion to be packaged.
inherit_defer ${@bb.utils.contains('PACKAGECONFIG', 'manual', 'bash-completion', '', d)}

# `vontel` links with the platform's RAID management library, of the recipe
# libvontel. Without it a simulated one is built, linked with and packaged.
# `manual` has the pages of the programs, too, where the build can run them.
PACKAGECONFIG ??= "tools vontel"
PACKAGECONFIG[exporter] = "-Dexporter=enabled,-Dexporter=disabled,libmicrohttpd zlib"
PACKAGECONFIG[manual] = "-Dmanual=auto,-Dmanual=disabled"
PACKAGECONFIG[sim] = "-Dsim=enabled,-Dsim=disabled,cli11 expat"
PACKAGECONFIG[tools] = "-Dtools=enabled,-Dtools=disabled,cli11"
PACKAGECONFIG[vontel] = "-Dvontel=system,-Dvontel=simulated,libvontel"

EXTRA_OEMESON = "-Dtests=disabled"
# Newer linkers leave room for pages of 64 KiB, as much as the whole library.
LDFLAGS:append:arm = " -Wl,-z,max-page-size=4096"

PACKAGE_BEFORE_PN = "${PN}-exporter ${PN}-tools ${PN}-sim ${PN}-vontel ${PN}-zsh-completion"
FILES:${PN}-exporter = "${bindir}/morvath-exporter ${systemd_system_unitdir} \
    ${datadir}/morvath/morvath.rules.yml"
FILES:${PN}-tools = "${bindir}/morvath"
FILES:${PN}-sim = "${bindir}/morvath-sim ${libdir}/morvath ${datadir}/morvath"
FILES:${PN}-vontel = "${libdir}/libvontel.so.*"
FILES:${PN}-zsh-completion = "${datadir}/zsh"
SUMMARY:${PN}-exporter = "Serves the readings of an OpenBMC platform to Prometheus"
SUMMARY:${PN}-tools = "Shows an OpenBMC platform and changes its settings"
SUMMARY:${PN}-sim = "Runs programs on a simulated OpenBMC platform"
SUMMARY:${PN}-vontel = "Simulated RAID management library"
RDEPENDS:${PN}-exporter = "${PN}-tools"
RDEPENDS:${PN}-sim = "dbus"

# The socket starts the service.
SYSTEMD_PACKAGES = "${@bb.utils.contains('PACKAGECONFIG', 'exporter', '${PN}-exporter', '', d)}"
SYSTEMD_SERVICE:${PN}-exporter = "morvath-exporter.socket morvath-exporter.service"
