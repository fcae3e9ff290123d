# Sourced by realstart.sh and scripts/measure-startup.sh: the program's single-instance lock
# objects, and waiting by polling.
#
# The program's single-instance lock is a System V shared memory segment and a semaphore, keyed by
# files (ftok(file, 'Q'): the low 16 bits of the inode, the low 8 bits of the device): the
# segment's file lies in the user's runtime folder, the semaphore's in TMPDIR under a name made
# from the runtime folder. A segment outlives a program that did not end normally; it is removed at
# the next start only while its key file is still there. A new key file that happens to get an
# inode with the same low bits as such an orphan makes a start take it for a running instance and
# end at once. Runs in fresh folders are exposed to exactly that, so these helpers give them key
# files whose keys are free, and remove the objects of those files when the run is over.

# The two key files of a user with runtime folder $1 and TMPDIR $2 (Qt's names: the letters of
# the key and its SHA-1).
instance_lock_files() {
  local key=$1/BRANTELKESTRAVINSingleInstanceGuard_Semaphore
  echo "$1/BRANTELKESTRAVINSingleInstanceGuard_SharedMemory"
  echo "$2/qipc_systemsem_$(tr -cd 'A-Za-z' <<<"$key")$(printf %s "$key" | sha1sum | cut -c1-40)"
}

ipc_key() {
  local inode device
  read -r inode device < <(stat -c '%i %d' "$1")
  printf '0x%08x' $(((0x51 << 24) | ((device & 0xff) << 16) | (inode & 0xffff)))
}

ipc_key_in_use() {
  { ipcs -m; ipcs -s; } | awk -v key="$1" '$1 == key {found = 1} END {exit !found}'
}

# Creates the key files for runtime folder $1 and TMPDIR $2, each with a key that no System V
# object has.
prepare_instance_lock() {
  local file tries
  for file in $(instance_lock_files "$1" "$2"); do
    tries=0
    until [ -e "$file" ] && ! ipc_key_in_use "$(ipc_key "$file")"; do
      # The taken file stays until the end, so that the next one gets another inode.
      [ -e "$file" ] && mv "$file" "$file.taken.$tries"
      : >"$file"
      tries=$((tries + 1))
      [ "$tries" -lt 200 ] || { echo "no free System V key for $file" >&2; return 1; }
    done
    rm -f "$file".taken.*
  done
}

# Removes the objects of the key files in the folders; to be called once no program of the run
# is left.
release_instance_lock() {
  local dir file key
  for dir in "$@"; do
  for file in "$dir"/*SingleInstanceGuard_SharedMemory "$dir"/qipc_systemsem_*; do
    [ -e "$file" ] || continue
    key=$(ipc_key "$file")
    case $file in
      *SharedMemory)
        if ipcs -m | awk -v key="$key" '$1 == key && $6 == 0 {found = 1} END {exit !found}'; then
          ipcrm -M "$key" || true
        fi ;;
      *) ipcrm -S "$key" 2>/dev/null || true ;;
    esac
  done
  done
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
