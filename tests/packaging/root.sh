# root.sh PACKAGES: a clean Debian 12 takes the packages in the folder PACKAGES, runs the program, builds and runs the
# examples that the packages bring, and is as it was when they are gone. Takes root, for debootstrap, and Debian's
# archive: the one that this machine's own apt uses.
set -euo pipefail
packages=$1
root=$(mktemp -d)
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf --one-file-system "$root"' EXIT

say() { printf -- '-- %s\n' "$*"; }
inside() { env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C DEBIAN_FRONTEND=noninteractive chroot "$root" "$@"; }
# take PACKAGE...: installs them; a name with a star is that of a file of ours.
take() { inside sh -c "cd /tmp && apt-get -o Dpkg::Use-Pty=0 -q -q -y --no-install-recommends install $* >/dev/null"; }

mirror=$(apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
    awk '$1 == "bookworm" && $2 == "main" { print $3; exit }')
[[ -n $mirror ]] || { echo 'apt knows no archive of Debian 12' >&2; exit 1; }

say 'a clean root'
debootstrap --variant=minbase bookworm "$root" "$mirror" >"$root.log" 2>&1 || { tail "$root.log" >&2; exit 1; }
rm "$root.log"
say "$(inside cat /etc/debian_version)"
chmod 755 "$root"
mount -t proc proc "$root/proc"
inside apt-get -q -q update
cp "$packages"/*.deb "$root/tmp"

say 'the program alone'
take ./zyn-tools_*.deb
[[ $(inside zyn sample --count 1000 --seed 1 | inside zyn decode --out json | wc -l) == 1000 ]]
inside zyn --version

say 'the library alone'
take ./libzyn1_*.deb
inside sh -c 'ldconfig -p | grep libzyn'

say 'the examples'
take ./libzyn-dev_*.deb g++ cmake make pkg-config
inside sh -euc '
    cmake -S /usr/share/doc/zyn/examples -B /tmp/examples >/tmp/log || { cat /tmp/log; exit 1; }
    cmake --build /tmp/examples >/tmp/log || { cat /tmp/log; exit 1; }
    ldd /tmp/examples/order/order | grep libzyn
    /tmp/examples/order/order 2>/tmp/order.err
    /usr/share/doc/zyn/examples/logon/run /tmp/examples/logon
    pkg-config --cflags --libs zynjson
    dpkg --verify libzyn1 libzyn-dev zyn-tools'

say 'without them'
inside apt-get -o Dpkg::Use-Pty=0 -q -q -y purge libzyn1 libzyn-dev zyn-tools >/dev/null
left=$(inside find / -xdev -name '*zyn*' -not -path '/tmp/*')
[[ -z $left ]] || { printf 'left behind:\n%s\n' "$left" >&2; exit 1; }
say 'all of it worked'
