#!/usr/bin/env bash
# An operating-system migration done for real on this machine and checked the only way that
# counts: by starting the migrated disk.
#
#   1. A small Debian system (debootstrap, cached) on a source disk image: ext4 on an MBR partition
#      with the boot flag, or (gpt) on a GPT partition behind a BIOS boot partition; GRUB for BIOS,
#      a serial console, kestravind installed.
#   2. The source booted in QEMU to its login prompt: a known good start.
#   3. kestravind started with that system as its root, in a mount namespace of its own and a chroot,
#      so that in its eyes the source is the running system; beside it an empty destination
#      image "BRANTEL-bootcheck.img" (12 GiB: the new system partition gets 10 GB more than its data).
#   4. The program, started as a user starts it (KESTRAVIN_SERVICE=system), on a virtual screen:
#      DATA MIGRATION, the system disk as source, the image as destination, NEXT, START, and the
#      finish page. Screenshots of every step.
#   5. The destination booted alone in QEMU: login prompt, log in, and the root it mounted must be
#      the new disk's partition by the new file system's UUID.
#
#   scripts/boot-check.sh [mbr|gpt]
#
# Needs root, loop devices, network on the first run (debootstrap from Debian's mirror), QEMU
# (KVM makes a boot take seconds instead of minutes) and a build of kestravin, kestravind and
# x11probe. Work, images and logs go to ${BOOT_CHECK_DIR:-/var/tmp/kestravin-boot-check}/run-<table>;
# the debootstrapped tree stays there for the next run.
set -euo pipefail
cd "$(dirname "$0")/.."

table=${1:-mbr}
work=${BOOT_CHECK_DIR:-/var/tmp/kestravin-boot-check}
case $table in
  mbr) layout=$'label: dos\nstart=2048, type=83, bootable\n'; system_number=1 ;;
  gpt) layout=$'label: gpt\nstart=2048, size=2048, type=21686148-6449-6E6F-744E-656564454649\nstart=4096, type=0FC63DAF-8483-4772-8E79-3D69D8477DE4\n'
       system_number=2 ;;
  *) echo "usage: $0 [mbr|gpt]" >&2; exit 1 ;;
esac
bin=$(cd "${BUILD_DIR:-build}/bin" && pwd)
probe=$bin/x11probe
password=kestravin
size=1366x768
source tests/realstart/helpers.sh

[ "$(id -u)" -eq 0 ] || { echo "boot-check needs root (loop devices, mounts, chroot)" >&2; exit 1; }
for program in kestravin kestravind x11probe; do
  [ -x "$bin/$program" ] || { echo "$bin/$program is not built" >&2; exit 1; }
done
missing=()
for tool in debootstrap:debootstrap qemu-system-x86_64:qemu-system-x86 xdotool:xdotool Xvfb:xvfb; do
  command -v "${tool%%:*}" >/dev/null || missing+=("${tool#*:}")
done
[ ${#missing[@]} -eq 0 ] || DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}"

mkdir -p "$work"
run=$work/run-$table
udevd=
rm -rf "$run"
mkdir -p "$run/shots"
log() { echo "[$(date +%T)] $*" | tee -a "$run/boot-check.log"; }

loops=()
mounts=()
pids=()
cleanup() {
  local i
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  sleep 1
  for pid in "${pids[@]}"; do kill -KILL "$pid" 2>/dev/null || true; wait "$pid" 2>/dev/null || true; done
  for ((i = ${#mounts[@]} - 1; i >= 0; i--)); do umount -R "${mounts[$i]}" 2>/dev/null || true; done
  for loop in "${loops[@]}"; do partx --delete "$loop" 2>/dev/null || true; losetup -d "$loop" 2>/dev/null || true; done
  [ -d "$run/home/runtime" ] && release_instance_lock "$run/home/runtime" "$run/tmp"
  [ -z "$udevd" ] || kill "$udevd" 2>/dev/null || true
  return 0
}
trap cleanup EXIT
trap 'exit 1' INT TERM

# Attaches image $1 as loop device $attached and waits for its partition devices; the kernel here
# may leave reading the table to partx.
attach() {
  attached=$(losetup --find --show --partscan "$1")
  loops+=("$attached")
  partx --add "$attached" 2>/dev/null || true
  poll 10000 test -b "${attached}p$system_number" || { echo "no partition devices for $attached" >&2; exit 1; }
}

in_chroot() { # root command...
  local root=$1
  shift
  for folder in dev proc sys; do mount --rbind "/$folder" "$root/$folder"; mount --make-rslave "$root/$folder"; done
  chroot "$root" "$@"
  local status=$?
  for folder in sys proc dev; do umount -R "$root/$folder"; done
  return $status
}

# GRUB's menu names the root file system by UUID only where /dev/disk/by-uuid has a link for it,
# which udev makes. A machine without it (a container) gets one for the length of the check.
if ! udevadm control --ping --timeout=2 2>/dev/null; then
  [ -x /lib/systemd/systemd-udevd ] || DEBIAN_FRONTEND=noninteractive apt-get install -y -qq udev
  /lib/systemd/systemd-udevd >"$run/udevd.log" 2>&1 &
  udevd=$!
  poll 10000 udevadm control --ping --timeout=1 2>/dev/null || { echo "udev did not start" >&2; exit 1; }
fi
settle() { udevadm settle --timeout=30 || true; }

# 1. The source system.
tree=$work/rootfs
if [ ! -x "$tree/usr/sbin/grub-install" ]; then
  log "debootstrap of a small Debian 12 into $tree"
  rm -rf "$tree"
  debootstrap --variant=minbase \
    --include=linux-image-amd64,grub-pc,systemd-sysv,udev,initramfs-tools,e2fsprogs,fdisk,rsync,kmod,login,passwd,libqt5core5a,libqt5network5,libprotobuf32,libudev1,libblkid1 \
    bookworm "$tree" http://deb.debian.org/debian >"$work/debootstrap.log" 2>&1
  rm -rf "$tree"/var/cache/apt/archives/*.deb "$tree"/var/lib/apt/lists/*
fi

source_image=$run/source.img
destination_image=$run/BRANTEL-bootcheck.img
log "source image: 2 GiB, $table table, the system on ext4 partition $system_number"
truncate -s 2G "$source_image"
sfdisk --quiet "$source_image" <<<"$layout"
attach "$source_image"
source_loop=$attached
system=${source_loop}p$system_number
mkfs.ext4 -q -L debian-root "$system"
source_uuid=$(blkid -o value -s UUID "$system")
settle
root=$run/source-root
mkdir -p "$root"
mount "$system" "$root"
mounts+=("$root")
cp -a "$tree"/. "$root"/
echo "UUID=$source_uuid / ext4 errors=remount-ro 0 1" >"$root/etc/fstab"
echo kestravin-bootcheck >"$root/etc/hostname"
cat >>"$root/etc/default/grub" <<'EOF'
GRUB_TIMEOUT=1
GRUB_CMDLINE_LINUX="console=ttyS0,115200"
GRUB_TERMINAL=serial
GRUB_SERIAL_COMMAND="serial --unit=0 --speed=115200"
EOF
echo "root:$password" | chroot "$root" chpasswd
install -m 0755 "$bin/kestravind" "$root/usr/sbin/kestravind"
log "GRUB into the source disk $source_loop"
in_chroot "$root" grub-install --target=i386-pc "$source_loop" >"$run/source-grub.log" 2>&1
in_chroot "$root" update-grub >>"$run/source-grub.log" 2>&1
sync
umount "$root"
mounts=()

# 2. The source boots.
log "booting the source"
python3 scripts/boot-console.py "$source_image" "$password" "$run/source-console.txt" 'findmnt -no SOURCE,UUID /' \
  | tee -a "$run/boot-check.log"

# 3. kestravind with the source as its running system.
truncate -s 12G "$destination_image"
destination_loop=$(losetup --find --show "$destination_image")
loops+=("$destination_loop")
mkdir -p /run/kestravin
log "kestravind with $system as its root; destination $destination_loop"
unshare --mount --propagation private -- sh -euc '
  root=$1
  mount "$2" "$root"
  for folder in dev proc sys; do mount --rbind "/$folder" "$root/$folder"; done
  mkdir -p "$root/run/kestravin" "$root/run/udev"
  mount --bind /run/kestravin "$root/run/kestravin"
  mount --bind /run/udev "$root/run/udev"
  exec chroot "$root" /usr/sbin/kestravind --include-loop
' sh "$root" "$system" >"$run/kestravind.log" 2>&1 &
service=$!
pids+=("$service")
poll 20000 test -S /run/kestravin/VelmoraServer || { echo "kestravind does not listen" >&2; exit 1; }

# 4. The wizard, as a user drives it.
mkdir -p "$run"/home/{config,data,cache,runtime} "$run/tmp"
chmod 700 "$run/home/runtime"
prepare_instance_lock "$run/home/runtime" "$run/tmp" || exit 1
Xvfb -displayfd 5 -screen 0 "${size}x24" -nolisten tcp 5>"$run/display" 2>"$run/xvfb.err" &
pids+=($!)
poll 20000 grep -q '^[0-9]' "$run/display" || { echo "Xvfb did not start" >&2; exit 1; }
(
  export HOME=$run/home XDG_CONFIG_HOME=$run/home/config XDG_DATA_HOME=$run/home/data
  export XDG_CACHE_HOME=$run/home/cache XDG_RUNTIME_DIR=$run/home/runtime TMPDIR=$run/tmp
  export DISPLAY=:$(head -n1 "$run/display") QT_QPA_PLATFORM=xcb KESTRAVIN_SERVICE=system
  unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
  exec "$bin/kestravin"
) >"$run/program.out" 2>&1 &
program=$!
pids+=("$program")
export DISPLAY=:$(head -n1 "$run/display")
shots_dir=$run/shots
source scripts/window-driving.sh
fit_window "KESTRAVIN SSD" "${size%x*}" "${size#*x}" || { echo "no window" >&2; exit 1; }
poll 30000 grep -q 'Add drive: ' "$run/program.out" || { echo "no drive list" >&2; exit 1; }
sleep 2

shot home
choose_migration_drives
lead_on 1.5
sleep 25
shot partitions
if [ "$table" = gpt ]; then
  # The program gives every partition that is not the system's own at least 100 MB, and the system
  # partition has taken the whole disk: the system partition (second row) gives up some room and
  # the 1 MiB BIOS boot partition (first row) takes 150 MB, typed in as a user would.
  click $((W - 356)) 397 0.2; xdotool key ctrl+a type 12000; xdotool key Return; sleep 0.5
  click $((W - 356)) 358 0.2; xdotool key ctrl+a type 150; xdotool key Return
  shot bios-boot-enlarged
fi
lead_on 1
shot warning
lead_on 1.5
shot progress
log "copying"
poll 1800000 grep -q 'Migration has finished\|Migration process failed' "$run/program.out" || true
sleep 3
shot end
grep -a 'Bootability message received\|Migration has finished\|Migration process failed' "$run/program.out" \
  | sed 's/\x1b\[[0-9;]*m//g' | tee -a "$run/boot-check.log"
kill "$program" "$service"
wait "$service" 2>/dev/null || true
grep -q 'Migration has finished' "$run/program.out" || { log "FAILED: the migration did not finish"; exit 1; }

# What the service left behind: nothing mounted from either disk.
if grep -q "^${source_loop}\|^${destination_loop}" /proc/mounts; then
  log "FAILED: something of the disks is still mounted"; exit 1
fi
settle
new_uuid=$(blkid -o value -s UUID -t TYPE=ext4 "$destination_loop"p* || true)

# 5. The destination boots on its own, from the new file system.
for loop in "${loops[@]}"; do partx --delete "$loop" 2>/dev/null || true; losetup -d "$loop"; done
loops=()
log "booting the destination alone (its system partition: UUID $new_uuid; the source's: $source_uuid)"
python3 scripts/boot-console.py "$destination_image" "$password" "$run/destination-console.txt" \
  'findmnt -no SOURCE,UUID /' 'cat /etc/fstab' | tee -a "$run/boot-check.log"
console=$(sed 's/\x1b\[[0-9;?]*[a-zA-Z]//g' "$run/destination-console.txt" | tr -d '\r')
if [ "$new_uuid" != "$source_uuid" ] && [ -n "$new_uuid" ] && grep -q "^/dev/vda[0-9]* $new_uuid\$" <<<"$console" \
  && grep -q "^UUID=$new_uuid / ext4" <<<"$console"; then
  log "PASSED: the migrated disk started on its own and mounted its new system partition"
else
  log "FAILED: the migrated disk did not come up on its new system partition (see $run/destination-console.txt)"
  exit 1
fi
