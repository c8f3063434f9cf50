"""Types keys into an interactive shell and prints the command line that they leave.

usage: type_keys.py bash|zsh KEYS    (KEYS: a JSON string)

The shell reads the start file that $START_FILE names; it must bind Control-X to a
command that writes the command line to the file $LINE_FILE. The prompt is "READY> ".
"""

import json
import os
import pty
import select
import signal
import sys
import tempfile
import time

DEADLINE = 30
CONTROL_X = b"\x18"

# Control-X writes the command line to $LINE_FILE, whole or not at all.
BASH_START = """
PS1='READY> '
. /usr/share/bash-completion/bash_completion
bind 'set bell-style none'
bind '"\\M-*": insert-completions'
dump() { printf %s "$READLINE_LINE" >"$LINE_FILE.part" && mv "$LINE_FILE.part" "$LINE_FILE"; }
bind -r '\\C-x'
bind -x '"\\C-x": dump'
"""
ZSH_START = """
PS1='READY> '
fpath=($ZSH_FOLDER $fpath)
autoload -U compinit && compinit -u -d "$LINE_FILE.dump"
dump() { print -rn -- "$BUFFER" >"$LINE_FILE.part" && mv "$LINE_FILE.part" "$LINE_FILE" }
zle -N dump
bindkey -e
bindkey -r '^X'
bindkey '^X' dump
setopt no_beep
"""


def start_shell(shell, folder):
    start = os.path.join(folder, ".zshrc" if shell == "zsh" else "bashrc")
    with open(start, "w", encoding="utf-8") as file:
        file.write(ZSH_START if shell == "zsh" else BASH_START)
    os.environ.update(LINE_FILE=os.path.join(folder, "line"), TERM="dumb", ZDOTDIR=folder)
    command = {"bash": ["bash", "--noprofile", "--rcfile", start, "-i"], "zsh": ["zsh", "-d", "-i"]}
    child, terminal = pty.fork()
    if child == 0:
        os.execvp(shell, command[shell])
    return child, terminal


def read_until(terminal, done, end):
    """Reads what the shell prints until done(all of it); what it printed."""
    seen = b""
    while not done(seen):
        if time.monotonic() > end:
            sys.exit("the shell did not answer in time:\n" + seen.decode(errors="replace"))
        if select.select([terminal], [], [], 0.05)[0]:
            seen += os.read(terminal, 65536)
    return seen


def main():
    shell, keys = sys.argv[1], json.loads(sys.argv[2]).encode()
    with tempfile.TemporaryDirectory() as folder:
        child, terminal = start_shell(shell, folder)
        end = time.monotonic() + DEADLINE
        read_until(terminal, lambda seen: b"READY> " in seen, end)
        os.write(terminal, keys + CONTROL_X)
        line = os.environ["LINE_FILE"]
        printed = read_until(terminal, lambda seen: os.path.exists(line), end)
        os.kill(child, signal.SIGKILL)
        os.waitpid(child, 0)
        with open(line, encoding="utf-8") as file:
            text = file.read()
    print(json.dumps({"line": text, "printed": printed.decode(errors="replace")}))


main()
