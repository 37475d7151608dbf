#!/usr/bin/env python3
"""Writes manual pages and shell completions from what the programs print for --help.

    packaging/linux/describe_programs.py --cli TIDYFOLD-CLI [--window TIDYFOLD] --help2man HELP2MAN OUT

Makes OUT/man1, OUT/bash, OUT/zsh and OUT/fish.
"""

import argparse
import dataclasses
import os
import pathlib
import re
import subprocess

SHORT = "clears out mail and calendar stores"


@dataclasses.dataclass
class Option:
    names: list  # "--store", "-h"
    value: str  # "STORE", or "" for a flag
    text: str

    def choices(self):
        return self.value.split("|") if "|" in self.value else []

    def takes_path(self):
        return self.value in ("STORE", "FILE", "DIRECTORY") or self.names[0] in ("STORE", "DIRECTORY", "SOURCE")


@dataclasses.dataclass
class Command:
    name: str
    text: str
    options: list
    takes_files: bool


def shown_by(program, *arguments):
    environment = {**os.environ, "COLUMNS": "80", "LC_ALL": "C.UTF-8"}
    return subprocess.run([program, *arguments, "--help"], capture_output=True, text=True, check=True,
                          env=environment).stdout


def section(text, title):
    """The lines below a title up to the next empty line; a description on a line of its own joins the line before."""
    found = re.search(rf"^{title}:\n((?:  .*\n)+)", text, re.MULTILINE)
    return re.sub(r"\n {20,}", "  ", found.group(1)).splitlines() if found else []


def options_of(text):
    options = []
    for line in section(text, "Options"):
        head, _, description = line.strip().partition("  ")
        words = re.sub(r" (Excludes|Needs):.*", "", head).split()
        value = words[1] if len(words) > 1 and words[1] != "..." else ""
        options.append(Option(words[0].split(","), re.sub(r":.*", "", value), description.strip()))
    return options


def commands_of(program, top):
    commands = []
    for line in section(top, "Subcommands"):
        name, text = line.split(None, 1)
        shown = shown_by(program, name)
        positional = section(shown, "Positionals")
        commands.append(Command(name, text, options_of(shown), bool(positional)))
    return commands


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def write_bash(out, top_options, commands):
    lines = ["# bash completion for tidyfold-cli", "_tidyfold_cli() {",
             "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= i",
             "  COMPREPLY=()",
             "  for ((i = 1; i < COMP_CWORD; i++)); do",
             "    case ${COMP_WORDS[i]} in " + "|".join(c.name for c in commands) + ") command=${COMP_WORDS[i]}; break ;; esac",
             "  done", "  compopt -o default 2>/dev/null", "  case $command:$before in"]
    for name, options in [("", top_options)] + [(c.name, c.options) for c in commands]:
        for option in options:
            if not option.value:
                continue
            pattern = "|".join(f"{name}:{n}" for n in option.names)
            words = " ".join(option.choices())
            if words:
                lines.append(f'    {pattern}) compopt +o default; COMPREPLY=($(compgen -W {quoted(words)} -- "$word")); return ;;')
            else:
                lines.append(f"    {pattern}) return ;;")
    lines += ["  esac", "  case $command in"]
    names = " ".join([c.name for c in commands] + [n for o in top_options for n in o.names])
    for label, words in [('""', names)] + [(c.name, " ".join(n for o in c.options for n in o.names)) for c in commands]:
        condition = "" if label == '""' else "[[ $word == -* ]] && "
        lines.append(f'    {label}) {condition}COMPREPLY=($(compgen -W {quoted(words)} -- "$word")) ;;')
    lines += ["  esac", "}", "complete -F _tidyfold_cli tidyfold-cli", ""]
    out.write_text("\n".join(lines), encoding="utf-8")


def zsh_argument(option):
    text = option.text.replace("\\", "\\\\").replace("[", "\\[").replace("]", "\\]").replace(":", "\\:")
    value = ""
    if option.choices():
        value = f":{option.names[-1].lstrip('-')}:({' '.join(option.choices())})"
    elif option.value:
        value = f":{option.value}:" + ("_files" if option.takes_path() else "")
    return [quoted(f"*{name}[{text}]{value}") for name in option.names]


def write_zsh(out, top_options, commands):
    lines = ["#compdef tidyfold-cli", "_tidyfold-cli() {", "  local state line", "  typeset -A opt_args",
             "  local -a commands=("]
    lines += ["    " + quoted(c.name + ":" + c.text.replace(":", "\\:")) for c in commands]
    lines += ["  )", "  _arguments -C \\"]
    lines += [f"    {a} \\" for o in top_options for a in zsh_argument(o)]
    lines += ["    '1:command:->command' '*::argument:->argument'", "  case $state in",
              "    command) _describe command commands ;;", "    argument)", "      case $line[1] in"]
    for command in commands:
        arguments = [a for o in command.options for a in zsh_argument(o)]
        if command.takes_files:
            arguments.append("'*:file:_files'")
        lines.append(f"        {command.name}) _arguments " + " ".join(arguments) + " ;;")
    lines += ["      esac ;;", "  esac", "}", '_tidyfold-cli "$@"', ""]
    out.write_text("\n".join(lines), encoding="utf-8")


def fish_option(option):
    words = []
    for name in option.names:
        words.append(("-l " if name.startswith("--") else "-s ") + name.lstrip("-"))
    if option.choices():
        words.append("-x -a " + quoted(" ".join(option.choices())))
    elif option.value:
        words.append("-r" if option.takes_path() else "-x")
    return " ".join(words) + " -d " + quoted(option.text)


def write_fish(out, top_options, commands):
    lines = ["# fish completion for tidyfold-cli",
             f"set -l commands {' '.join(c.name for c in commands)}"]
    outside = "-n \"not __fish_seen_subcommand_from $commands\""
    lines += [f"complete -c tidyfold-cli {outside} {fish_option(o)}" for o in top_options]
    for command in commands:
        lines.append(f"complete -c tidyfold-cli {outside} -f -a {command.name} -d {quoted(command.text)}")
        inside = f"-n '__fish_seen_subcommand_from {command.name}'"
        lines += [f"complete -c tidyfold-cli {inside} {fish_option(o)}" for o in command.options]
    out.write_text("\n".join(lines) + "\n", encoding="utf-8")


def write_manual(help2man, out, short, see_also, *command):
    """`command` is the program, and the name of one of its commands where it is about that alone."""
    version = subprocess.run([see_also["version_of"], "--version"], capture_output=True, text=True, check=True).stdout
    name = "-".join([pathlib.Path(command[0]).name, *command[1:]])
    others = ", ".join(f"\\fB{other}\\fR(1)" for other in see_also["pages"] if other != name)
    include = out / "include"
    include.write_text(f"[see also]\n{others}\n", encoding="utf-8")
    subprocess.run([help2man, "--no-info", "--no-discard-stderr", "--locale=C.UTF-8", f"--name={short}",
                    f"--version-string={version.split()[-1]}", "--manual=Tidyfold", "--source=Tidyfold",
                    f"--include={include}", f"--output={out / name}.1", " ".join(map(str, command))],
                   check=True, env={**os.environ, "COLUMNS": "80"})
    include.unlink()
    page = out / f"{name}.1"
    text = page.read_text(encoding="utf-8")
    # help2man names the page after the program alone.
    program = pathlib.Path(command[0]).name
    text = re.sub(r'^\.TH "?\S+?"? ', f'.TH "{name.upper()}" ', text, flags=re.MULTILINE)
    text = re.sub(rf"^{re.escape(program)}( {command[1]})? \\- ", f"{name} \\\\- ", text, flags=re.MULTILINE) \
        if len(command) > 1 else text
    page.write_text(text, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cli", required=True)
    parser.add_argument("--window")
    parser.add_argument("--help2man", required=True)
    parser.add_argument("out", type=pathlib.Path)
    arguments = parser.parse_args()
    for folder in ("man1", "bash", "zsh", "fish"):
        (arguments.out / folder).mkdir(parents=True, exist_ok=True)

    top = shown_by(arguments.cli)
    top_options, commands = options_of(top), commands_of(arguments.cli, top)
    write_bash(arguments.out / "bash/tidyfold-cli", top_options, commands)
    write_zsh(arguments.out / "zsh/_tidyfold-cli", top_options, commands)
    write_fish(arguments.out / "fish/tidyfold-cli.fish", top_options, commands)

    programs = ["tidyfold"] if arguments.window else []
    about = {"version_of": arguments.cli,
             "pages": programs + ["tidyfold-cli"] + [f"tidyfold-cli-{c.name}" for c in commands]}
    man = arguments.out / "man1"
    if arguments.window:
        write_manual(arguments.help2man, man, SHORT, about, arguments.window)
    write_manual(arguments.help2man, man, SHORT + " on the command line", about, arguments.cli)
    for command in commands:
        write_manual(arguments.help2man, man, command.text[0].lower() + command.text[1:], about, arguments.cli,
                     command.name)


if __name__ == "__main__":
    main()
