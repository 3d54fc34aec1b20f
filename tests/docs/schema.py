#!/usr/bin/python3
"""Holds what `tarn-service --json` prints against docs/schema/tarn-service-1.json.

    schema.py FOLDER PROVIDER    FOLDER holds tarn-service, PROVIDER a plug-in for tests

Every command of the program is run on a simulated instrument, some of them so that they fail, some on one of the plug-in's that
somebody else is busy with. Each line must be as the schema says; each command must have had a result, each event of a watch and
each code of an error must have come, with its exit code. Then every line is damaged, and the schema must say so.
"""

import copy
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile

from jsonschema import Draft202012Validator
from jsonschema.exceptions import best_match

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
EXIT_CODES = {"failed": 1, "not-conforming": 1, "usage": 2, "not-found": 3, "not-offered": 3, "busy": 3, "refused": 4,
              "instrument-lost": 5, "local-file": 9, "interrupted": 130}

# In this order, on one instrument. Where one needs a file of this computer, it stands before.
COMMANDS = """
    --version
    --help
    completion bash
    completion words -- files ''
    providers
    controls
    check-provider
    --address misbehave=twice check-provider
    files write examples/plan.json
    files list
    files space
    files read plan.json -o copy.json
    files read plan.json -o copy.json
    files delete plan.json --yes
    potentiometers list
    potentiometers read 0
    potentiometers write 0 128
    potentiometers write 0 127 --memory eeprom --yes
    usb show
    usb list
    usb write Vell\\ 802 --yes
    serial show
    serial write 20417 --yes
    memory write examples/plan.json --yes
    memory read -o image
    memory check
    memory erase --yes
    lo-leakage show
    lo-leakage on
    lo-leakage off
    temperature show
    temperature watch --count 1
    system-terms override
    system-terms example-plan
    system-terms example
    system-terms plan
    system-terms plan -o plan.json
    system-terms write terms.json --yes
    ifsw-calibration plan
    ifsw-calibration example
    ifsw-calibration save ifsw.json --yes
    power-calibration plan
    power-calibration example
    power-calibration save power.csv --yes
    corrections list
    corrections enable system
    corrections disable system
    corrections watch --count 2
    --provider awkward --address shared corrections watch --count 3
    calibrations status
    calibrations watch --count 2
    --provider awkward --address shared calibrations watch --count 2
    --address bench3,drop-every=2 calibrations watch --count 4
    quill-power show
    quill-power get lo-power
    quill-power set lo-power 20 synt-power-mode high
    quill-power load rf-power-codes codes --yes
    quill-power reset
    quill-power watch --count 1
    quill-synthesis show
    quill-synthesis get selected-if
    quill-synthesis set selected-if 2
    quill-synthesis reset
    sable-power show
    sable-power get attenuation-db
    sable-power set attenuation-db 3dB
    sable-power load power-calibration table --yes
    sable-synthesis show
    sable-synthesis get capacitor1-range
    sable-synthesis set capacitor1-range 10pF..20pF
    sable-synthesis get capacitor1-range
    dorn-power show
    dorn-power get available-gains
    dorn-power set dac-mode-union on
    dorn-power load receiver-correction receivers --yes
    dorn-synthesis show
    dorn-synthesis get reference-frequency
    dorn-synthesis set reference-frequency 25MHz
    vell-synthesis show
    vell-synthesis get manual-if-enabled
    vell-synthesis set manual-if-enabled on
    tour
    nonsense
    files
    files read missing
    files write missing
    serial write 1
    --address fail-next=io serial show
    --address bench2,profile=tove quill-power show
    --address misbehave=keep --timeout 200ms files list
"""


class Console:
    def __init__(self, programs, provider, folder):
        self.program, self.folder = f"{programs}/tarn-service", folder
        self.environment = {"TARN_SERVICE_STATE": f"{folder}/state", "LC_ALL": "C.UTF-8", "TZ": "UTC",
                            "TARN_SERVICE_PROVIDERS": f"{programs.parent}/lib/tarn-service/providers:{provider}"}
        self.environment |= {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}

    def start(self, command):
        """A process that prints JSON. `command` is written as for a shell."""
        return subprocess.Popen(["bash", "-c", f'exec "$0" --json {command}', self.program], cwd=self.folder, text=True,
                                env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def run(self, command):
        """The objects that a command prints, and its exit code."""
        process = self.start(command)
        out, _ = process.communicate(timeout=100)
        return [json.loads(line) for line in out.splitlines()], process.returncode

    def help(self, words=""):
        (printed,), _ = self.run(f"{words} --help")
        return printed["result"]["help"]

    def names(self, words, heading):
        """The nouns or verbs that the help of a command lists."""
        _, _, rest = self.help(words).partition(f"\n{heading}:\n")
        return [line.split()[0] for line in rest.split("\n\n")[0].splitlines()]

    def commands(self):
        """Every command of the program, as its words."""
        for noun in self.names("", "Nouns"):
            verbs = self.names(noun, "Verbs")
            yield from (f"{noun} {verb}" for verb in verbs)
            if not verbs:
                yield noun


def prepare(console):
    """The files of this computer that the commands need."""
    shutil.copytree(ROOT / "examples", console.folder / "examples")
    for name, size in {"codes": 201, "table": 4096, "receivers": 1024}.items():
        (console.folder / name).write_bytes(bytes(32 for _ in range(size)))
    for noun, name in {"system-terms": "terms.json", "ifsw-calibration": "ifsw.json", "power-calibration": "power.csv"}.items():
        console.run(f"{noun} plan -o {name}.plan")
        (printed,), _ = console.run(f"{noun} example --plan {name}.plan")
        (console.folder / name).write_text(printed["result"]["example"])


def interrupted(console):
    """What a watch prints that ends by Ctrl-C, and a command that finds the instrument in use meanwhile."""
    watch = console.start("temperature watch")
    first = json.loads(watch.stdout.readline())
    yield console.run("serial show")
    watch.send_signal(signal.SIGINT)
    out, _ = watch.communicate(timeout=100)
    yield [first, *map(json.loads, out.splitlines())], watch.returncode


def damaged(printed):
    """Copies of an object that the schema must refuse."""
    for change in ({"surplus": 1}, {"schema": "tarn-service/2"}, {"command": 1}):
        yield {**printed, **change}
    kind = next(name for name in ("result", "error", "progress") if name in printed)
    yield {name: value for name, value in printed.items() if name != kind}
    target = (copied := copy.deepcopy(printed))[kind]
    while isinstance(target, list) and target:
        target = target[0]
    if isinstance(target, dict):
        target["surplus"] = 1
        yield copied
    if kind == "result" and "help" not in printed[kind]:
        yield {**printed, "command": "nonsense"}


def events(schema):
    """What a watch can tell of, as the words of its command and the event."""
    for answer in schema["$defs"]["results"]["anyOf"]:
        for shape in answer["properties"]["result"].get("anyOf", []):
            event = shape["properties"].get("event", {"enum": []})
            yield from ((answer["properties"]["command"]["enum"][0], name) for name in event.get("enum", [event.get("const")]))


def main(programs, provider):
    validator = Draft202012Validator(schema := json.loads((ROOT / "docs/schema/tarn-service-1.json").read_text()))
    validator.check_schema(schema)
    wrong, answered, told, codes, count = [], set(), set(), set(), 0
    with tempfile.TemporaryDirectory() as name:
        console = Console(pathlib.Path(programs).resolve(), pathlib.Path(provider).resolve(), pathlib.Path(name))
        expected = set(console.commands())
        prepare(console)
        outputs = [(command, *console.run(command)) for command in map(str.strip, COMMANDS.strip().splitlines())]
        outputs += [("temperature watch", *output) for output in interrupted(console)]
    for command, lines, status in outputs:
        count += len(lines)
        for printed in lines:
            if flaw := best_match(validator.iter_errors(printed)):
                wrong.append(f"{command}: {flaw.message}\n  {json.dumps(printed)[:300]}")
            wrong += [f"{command}: the schema takes {json.dumps(copied)[:300]}" for copied in damaged(printed)
                      if validator.is_valid(copied)]
            if "result" in printed and "help" not in printed["result"]:
                answered.add(printed["command"])
                if isinstance(printed["result"], dict) and "event" in printed["result"]:
                    told.add((printed["command"], printed["result"]["event"]))
        code = lines[-1].get("error", {}).get("code") if lines else None
        codes.add(code)
        if status != EXIT_CODES.get(code, 0):
            wrong.append(f"{command}: ended with {status}, and said {lines[-1:]}")
    wrong += [f"{command}: has no result here; add it to COMMANDS" for command in sorted(expected - answered)]
    wrong += [f"{command}: the event '{event}' did not come" for command, event in sorted(set(events(schema)) - told)]
    known = set(schema["properties"]["error"]["properties"]["code"]["enum"])
    wrong += [f"the error '{code}' did not come" for code in sorted(known - codes)]
    print("\n".join(wrong) if wrong else f"{count} objects of {len(expected)} commands are as the schema says")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
