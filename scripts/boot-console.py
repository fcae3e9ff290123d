#!/usr/bin/env python3
"""Boots a disk image in QEMU and talks to it over its serial console, as a person at the
machine's terminal would: waits for the login prompt, logs in, runs a few commands, powers off.

    boot-console.py IMAGE PASSWORD TRANSCRIPT [COMMAND...]

Prints how long the boot took to the login prompt. Exits with 0 when the prompt came and every
command ran, 1 when the prompt did not come within the time limit, 2 when QEMU ended early. The
whole console output goes to TRANSCRIPT.
"""
import os
import select
import subprocess
import sys
import time

BOOT_LIMIT_S = 300
COMMAND_LIMIT_S = 60
# A prompt no command's output contains; the line that sets it spells it in pieces, so that its
# echo is not taken for the prompt.
PROMPT = b"KV-READY# "
SET_PROMPT = "PS1='KV''-READY# '"


def qemu_command(image):
    # Software emulation by default: KVM inside a virtual machine often offers a processor that the
    # kernel cannot start on (it resets before its first line), and a small system boots in well
    # under a minute without it. QEMU_ACCEL=kvm where KVM is whole.
    accel = os.environ.get("QEMU_ACCEL", "tcg")
    cpu = "host" if accel == "kvm" else "max"
    return ["qemu-system-x86_64", "-accel", accel, "-cpu", cpu, "-m", "1024", "-smp", "1", "-nographic", "-no-reboot",
            "-drive", f"file={image},format=raw,if=virtio", "-nic", "none"]


class Console:
    def __init__(self, image, transcript):
        self.transcript = open(transcript, "wb")
        self.qemu = subprocess.Popen(qemu_command(image), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                     stderr=subprocess.STDOUT)
        self.seen = b""

    def wait_for(self, text, limit):
        deadline = time.monotonic() + limit
        while text not in self.seen:
            left = deadline - time.monotonic()
            if left <= 0:
                return False
            ready, _, _ = select.select([self.qemu.stdout], [], [], left)
            if not ready:
                continue
            chunk = os.read(self.qemu.stdout.fileno(), 65536)
            if not chunk:
                raise EOFError
            self.transcript.write(chunk)
            self.transcript.flush()
            self.seen += chunk
        # What came after the text is kept for the next wait.
        self.seen = self.seen[self.seen.index(text) + len(text):]
        return True

    def send(self, line):
        self.qemu.stdin.write(line.encode() + b"\n")
        self.qemu.stdin.flush()

    def close(self):
        try:
            self.qemu.wait(timeout=COMMAND_LIMIT_S)
        except subprocess.TimeoutExpired:
            self.qemu.kill()
            self.qemu.wait()
        self.transcript.close()


def main():
    if len(sys.argv) < 4:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    image, password, transcript, commands = sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4:]
    console = Console(image, transcript)
    started = time.monotonic()
    try:
        if not console.wait_for(b"login: ", BOOT_LIMIT_S):
            print(f"no login prompt within {BOOT_LIMIT_S} s")
            console.qemu.kill()
            return 1
        print(f"login prompt after {time.monotonic() - started:.1f} s")
        console.send("root")
        console.wait_for(b"Password: ", COMMAND_LIMIT_S)
        console.send(password)
        if not console.wait_for(b"# ", COMMAND_LIMIT_S):
            print("no shell after the login")
            console.qemu.kill()
            return 1
        console.send(SET_PROMPT)
        for command in commands + ["poweroff"]:
            if not console.wait_for(PROMPT, COMMAND_LIMIT_S):
                print(f"no shell prompt before: {command}")
                console.qemu.kill()
                return 1
            console.send(command)
    except EOFError:
        print("QEMU ended before the commands ran")
        return 2
    finally:
        console.close()
    return 0


if __name__ == "__main__":
    sys.exit(main())
