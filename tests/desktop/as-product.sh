#!/bin/sh
# Runs a program as on another desktop product: with an /etc/os-release and a /usr/share/applications of its own, which
# nobody else sees. The program takes this script's place, so that no other command line holds its name.
#
# usage: as-product.sh OS_RELEASE_FILE APPLICATIONS_FOLDER PROGRAM [ARGUMENT...]
set -eu

if [ "$1" != --inside ]; then
    map=--map-root-user
    [ "$(id -u)" != 0 ] || map=
    exec unshare ${map:+"$map"} --mount "$0" --inside "$@"
fi
mount --bind "$2" /etc/os-release
mount --bind "$3" /usr/share/applications
shift 3
exec "$@"
