#!/usr/bin/env python3
"""Loads the completion scripts into bash, zsh and fish and asks these for completions.

usage: completions.py PROGRAM

bash and zsh are typed to on a terminal, as a person does; fish answers by itself. Every question has one answer.
"""
import fcntl
import os
import pathlib
import pty
import re
import select
import struct
import subprocess
import sys
import tempfile
import termios

# What is typed, and the words after the name of the program when the tabulator has completed it.
QUESTIONS = [
    ("orsolva ins", "inspect"),
    ("orsolva qc --elev", "qc --elevation"),
    ("orsolva qc --html", "qc --html"),
    ("orsolva qc --snr", "qc --snr-from-strength"),
    ("orsolva qc --profile netw", "qc --profile network"),
    ("orsolva qc --color al", "qc --color always"),
    ("orsolva qc station.r", "qc station.rnx"),
    ("orsolva qc --detail station.r", "qc --detail station.rnx"),
    ("orsolva explain mp_rm", "explain mp_rms_m"),
    ("orsolva completion z", "completion zsh"),
    ("orsolva simulate --pres", "simulate --preset"),
]
LONGEST_S = 120  # against a shell that never answers


class Shell:
    """An interactive shell in which the program only says which words it was given."""

    def __init__(self, command, folder):
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.execvpe(command[0], command, {**os.environ, "TERM": "dumb", "HOME": folder, "PS1": "", "PS2": ""})
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 400, 0, 0))
        self.read = ""

    def type(self, text):
        os.write(self.terminal, text.encode())

    def wait_for(self, pattern):
        """The text of the first group, once the shell has written it."""
        while not (found := re.search(pattern, self.read)):
            if not select.select([self.terminal], [], [], LONGEST_S)[0]:
                raise SystemExit(f"no answer from the shell, which wrote:\n{self.read}")
            try:
                self.read += os.read(self.terminal, 65536).decode(errors="replace")
            except OSError:
                raise SystemExit(f"the shell ended after:\n{self.read}")
        self.read = self.read[found.end():]
        return found.group(1)

    def run(self, line):
        self.type(line + "; echo do''ne\n")
        self.wait_for("(done)\r?\n")

    def completed(self, typed):
        self.type(typed + "\t\n")
        return self.wait_for(r"<<([^\r\n]*)>>\r?\n")

    def close(self):
        os.close(self.terminal)
        os.waitpid(self.process, 0)


def answers_of(shell):
    """The completed words of every question; an equals sign or blank that waits for a value is left out."""
    answers = [shell.completed(typed).rstrip("= ") for typed, _ in QUESTIONS]
    shell.close()
    return answers


def bash(script, folder):
    shell = Shell(["bash", "--norc", "--noprofile", "-i"], folder)
    shell.run("orsolva() { printf '<<%s>>\\n' \"$*\"; }")
    shell.run(f"source {script}")
    return answers_of(shell)


def zsh(script, folder, sourced):
    shell = Shell(["zsh", "-f", "-i"], folder)
    shell.run("unsetopt zle_bracketed_paste prompt_sp; PROMPT=; orsolva() { print -r -- \"<<$*>>\"; }")
    if sourced:
        shell.run(f"autoload -Uz compinit; compinit -u -D; source {script}")
    else:
        # As installed: found by its name in a folder of functions.
        shell.run(f"fpath=({folder}/functions $fpath); autoload -Uz compinit; compinit -u -D")
    return answers_of(shell)


def fish(script, folder):
    answers = []
    for typed, _ in QUESTIONS:
        command = ["fish", "--no-config", "-c", f"source {script}; complete -C '{typed}'"]
        done = subprocess.run(command, cwd=folder, env={**os.environ, "HOME": folder}, capture_output=True, text=True)
        if done.stderr:
            raise SystemExit(f"fish says: {done.stderr}")
        words = [line.split("\t")[0] for line in done.stdout.splitlines()]
        answers.append(" ".join(typed.split()[1:-1] + words))
    return answers


def main():
    program = os.path.abspath(sys.argv[1])
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        scripts = {}
        for name in ("bash", "zsh", "fish"):
            scripts[name] = f"{folder}/.{name}"
            text = subprocess.run([program, "completion", name], check=True, capture_output=True).stdout
            pathlib.Path(scripts[name]).write_bytes(text)
        pathlib.Path(folder, "functions").mkdir()
        pathlib.Path(folder, "functions/_orsolva").write_bytes(pathlib.Path(scripts["zsh"]).read_bytes())
        pathlib.Path(folder, "station.rnx").touch()
        results = {
            "bash": bash(scripts["bash"], folder),
            "zsh": zsh(scripts["zsh"], folder, False),
            "zsh, sourced": zsh(scripts["zsh"], folder, True),
            "fish": fish(scripts["fish"], folder),
        }
    for shell, answers in results.items():
        for (typed, wanted), answer in zip(QUESTIONS, answers):
            if answer != wanted:
                failed += 1
                print(f"{shell}: '{typed}' became '{answer}', expected '{wanted}'")
    print(f"{len(results)} ways to load completions, {len(QUESTIONS)} questions each, {failed} wrong answers")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
