# Sourced by realstart.sh and scripts/measure-startup.sh: the program's single-instance lock
# objects, and waiting by polling.
#
# The program's single-instance lock is a System V shared memory segment and two semaphores. Their
# keys come from files in TMPDIR (ftok(file, 'Q'): the low 16 bits of the inode, the low 8 bits of
# the device). A segment outlives a program that did not end normally; it is removed at the next
# start only while its key file is still there. A new key file that happens to get an inode with
# the same low bits as such an orphan makes a start take it for a running instance and end at once.
# Runs in a fresh TMPDIR are exposed to exactly that, so these helpers give them key files whose
# keys are free, and remove the objects of those files when the run is over.

instance_lock_names() {
  local key
  for key in BRANTELKESTRAVINSingleInstanceGuard_SharedMemory BRANTELKESTRAVINSingleInstanceGuard_Semaphore; do
    local letters hash
    letters=$(tr -cd 'A-Za-z' <<<"$key")
    hash=$(printf %s "$key" | sha1sum | cut -c1-40)
    case $key in
      *SharedMemory) echo "qipc_sharedmemory_$letters$hash" "qipc_systemsem_$letters$hash" ;;
      *) echo "qipc_systemsem_$letters$hash" ;;
    esac
  done
}

ipc_key() {
  local inode device
  read -r inode device < <(stat -c '%i %d' "$1")
  printf '0x%08x' $(((0x51 << 24) | ((device & 0xff) << 16) | (inode & 0xffff)))
}

ipc_key_in_use() {
  { ipcs -m; ipcs -s; } | awk -v key="$1" '$1 == key {found = 1} END {exit !found}'
}

# Creates the key files in the directory, each with a key that no System V object has.
prepare_instance_lock() {
  local dir=$1 name tries
  for name in $(instance_lock_names); do
    tries=0
    until [ -e "$dir/$name" ] && ! ipc_key_in_use "$(ipc_key "$dir/$name")"; do
      # The taken file stays until the end, so that the next one gets another inode.
      [ -e "$dir/$name" ] && mv "$dir/$name" "$dir/taken.$tries.$name"
      : >"$dir/$name"
      tries=$((tries + 1))
      [ "$tries" -lt 200 ] || { echo "no free System V key for $dir/$name" >&2; return 1; }
    done
  done
  rm -f "$dir"/taken.*
}

# Removes the objects of the key files in the directories; to be called once no program of the
# run is left.
release_instance_lock() {
  local dir file key
  for dir in "$@"; do
  for file in "$dir"/qipc_*; do
    [ -e "$file" ] || continue
    key=$(ipc_key "$file")
    case $file in
      */qipc_sharedmemory_*)
        if ipcs -m | awk -v key="$key" '$1 == key && $6 == 0 {found = 1} END {exit !found}'; then
          ipcrm -M "$key" || true
        fi ;;
      */qipc_systemsem_*) ipcrm -S "$key" 2>/dev/null || true ;;
    esac
  done
  done
}

# The keys of shared memory segments of the directory's key files that no process holds.
orphaned_instance_lock() {
  local file key
  for file in "$1"/qipc_sharedmemory_*; do
    [ -e "$file" ] || continue
    key=$(ipc_key "$file")
    ipcs -m | awk -v key="$key" '$1 == key && $6 == 0 {found = 1} END {exit !found}' && echo "$key"
  done
  return 0
}

# Both scripts wait for what the program does by polling, never by fixed sleeps.
now_ms() { date +%s%3N; }

# Runs a command every POLL_STEP seconds (default 0.05) until it succeeds or the limit (ms) passes.
poll() {
  local limit=$1
  shift
  local deadline=$(($(now_ms) + limit))
  until "$@"; do
    [ "$(now_ms)" -ge "$deadline" ] && return 1
    sleep "${POLL_STEP:-0.05}"
  done
}
