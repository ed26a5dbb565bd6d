#!/usr/bin/env bash
# Looks into the Debian package: test/package_test.sh PACKAGE. With --bare before it the package is installed on a Debian 12
# that has nothing else, and its programs write and read a run there; as root, in some minutes, with the network.
set -euo pipefail
project=$(dirname "$(dirname "$(readlink -f "$0")")")

die() {
  echo "package_test.sh: $*" >&2
  exit 1
}

look_into() { # PACKAGE
  local list name
  list=$(dpkg-deb --contents "$1" | awk '{ print $6 }')
  for name in $(sed -n 's/^foreach(program \(.*\))/\1/p' "$project/tools/CMakeLists.txt"); do
    for file in "bin/$name" "share/man/man1/$name.1" "share/bash-completion/completions/$name"; do
      grep -qxE "\./usr/$file(\.gz)?" <<< "$list" || die "$file is not in the package"
    done
  done
  for file in lib/libStnEvent.so.2 lib/libStnEvent_rdict.pcm lib/libStnEvent.rootmap lib/pkgconfig/StnEvent.pc \
    include/StnEvent/StnEvent.h lib/stnevent/ROOT/lib/libCore.so lib/stnevent/ROOT/lib/std.pcm lib/stnevent/ROOT/LICENSE; do
    grep -qxF "./usr/$file" <<< "$list" || die "$file is not in the package"
  done
  ! grep -vE '^\./(usr/?)?$|^\./usr/(bin|include|lib|share)/' <<< "$list" || die "these files don't belong there"
  dpkg-deb --fsys-tarfile "$1" | tar --extract --to-stdout ./usr/lib/pkgconfig/StnEvent.pc |
    grep -q -- '-I${libdir}/stnevent/ROOT/include' || die "StnEvent.pc does not name the ROOT in the package"
  [[ $(dpkg-deb --field "$1" Version) == "$(stn_version)" ]] || die "the package has another version than the project"
  echo "$1: $(wc -l <<< "$list") files, $(du -h "$1" | cut -f1), $(dpkg-deb --field "$1" Installed-Size) kB installed"
}

stn_version() { sed -n 's/^project(StnEvent VERSION \([0-9.]*\).*/\1/p' "$project/CMakeLists.txt"; }

unmount() { umount -l "$root/proc" "$root/dev" 2> /dev/null || true; }

make_bare() { # in $root
  command -v debootstrap > /dev/null || die "install debootstrap, or name a folder with a bare Debian by STN_BARE"
  debootstrap --variant=minbase --include=ca-certificates bookworm "$root" > "$root.log" 2>&1 || die "see $root.log"
}

try_on_bare() { # PACKAGE
  root=${STN_BARE:-$(mktemp -d)/bare}
  [[ -e $root/etc/debian_version ]] || make_bare
  trap unmount EXIT
  mount --bind /proc "$root/proc"
  mount --bind /dev "$root/dev"
  cp /etc/resolv.conf /etc/hosts "$root/etc/"
  cp -r /etc/apt/apt.conf.d "$root/etc/apt/"
  cp "$1" "$root/tmp/stnevent.deb"
  cp "$project/test/consumer/consumer.cc" "$root/tmp/"
  chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive bash -euxc '
    cd /tmp
    apt-get update -q
    ! dpkg -s stnevent > /dev/null 2>&1 || apt-get remove -y -q stnevent
    apt-get install -y -q --no-install-recommends ./stnevent.deb
    stn-simulate --force --events 50 --checksums sums.json run.root
    [[ $(stn-check run.root 2>&1) == "run.root: sound, 50 events can be read" ]]
    stn-headers --count 3 run.root
    stn-verify run.root --checksums sums.json
    stn-show --event 0 run.root > shown.txt
    apt-get install -y -q --no-install-recommends pkg-config
    g++ consumer.cc -o consumer $(pkg-config --cflags --libs StnEvent)
    [[ $(./consumer 2>&1) == "station 2, event 77, "* ]]
    head -c 900000 run.root > broken.root
    stn-recover --force --partial broken.root saved.root || [ $? = 1 ]
    apt-get remove -y -q stnevent
    ! ls -d /usr/lib/stnevent 2> /dev/null' || die "the package does not work on a bare Debian"
  echo "installed, used and removed on a bare Debian"
}

if [[ ${1:-} == --bare ]]; then
  ((EUID == 0)) || die "--bare needs root"
  look_into "$2"
  try_on_bare "$2"
else
  look_into "${1:?name a package}"
fi
