#!/usr/bin/python3
"""usage: picture.py WB_TRIAL PICTURE.svg

Draws a failing check of the example, as it looks on a terminal: its uninstall script forgets what
the setup script wrote into the workbench."""

import pathlib
import shutil
import subprocess
import sys
import tempfile

from rich.console import Console
from rich.text import Text

program, picture = (pathlib.Path(name).resolve() for name in sys.argv[1:])
examples = pathlib.Path(__file__).resolve().parent.parent / "examples"
with tempfile.TemporaryDirectory() as folder:
    for name in ("product", "workbench", "session.toml"):
        copy = shutil.copytree if (examples / name).is_dir() else shutil.copy
        copy(examples / name, pathlib.Path(folder) / name)
    [uninstall_script] = pathlib.Path(folder).glob("product/**/uninst_wr_qev.sh")
    uninstall_script.write_text("#!/bin/sh\necho took qev out\n")
    command = f"'{program}' check '{folder}/session.toml'"
    check = subprocess.run(
        ["script", "--quiet", "--return", "--command", command, "/dev/null"],
        capture_output=True,
        text=True,
        check=False,
    )
    if check.returncode != 1:
        sys.exit(f"picture.py: the check ended with {check.returncode}:\n{check.stdout}")
    report = check.stdout.replace("\r", "").replace(folder, "/srv")

console = Console(record=True, width=100, file=open("/dev/null", "w"))
console.print(Text.from_ansi("$ wb-trial check session.toml\n" + report))
console.save_svg(str(picture), title="wb-trial", unique_id="check")
