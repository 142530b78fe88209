"""What is installed and removed from a build: programs, manual pages, desktop entries."""

import os
import pathlib
import re
import shutil
import subprocess

import pytest

SOURCE = pathlib.Path(__file__).parents[2]
BUILD = pathlib.Path(os.environ["KEST_BUILD"])
ID = "com.kestronics.kest-settings"
PROGRAMS = {"kest-settings", "kest-settings-terminal", "kest-settings-ctl", "kest-inspect"}
COMPLETIONS = ("bash-completion/completions/kest-settings-ctl", "zsh/site-functions/_kest-settings-ctl",
               "fish/vendor_completions.d/kest-settings-ctl.fish")


def output(*command):
    if not shutil.which(command[0]):
        pytest.skip(f"{command[0]} is not installed")
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=True).stdout


def test_manual_pages():
    os.environ.update(LC_ALL="C.UTF-8", MANWIDTH="200")
    pages = {page: output("man", "--warnings", "--encoding=UTF-8", "--local-file", page)
             for page in (BUILD / "packaging/linux/man").iterdir()}
    for page, text in pages.items():
        assert not re.search(r"^\S.*:\d+: (warning|error)|@[A-Za-z_]+@", text, re.M), page
    text = pages[BUILD / "packaging/linux/man/kest-settings.5"]
    for table, row in (("Settings.h", r'^ *\{"([^"]*)", \d'), ("KestSettingsTables.cpp", r'^ *\{[ \d]*, "(.*)"\},$')):
        names = re.findall(row, (SOURCE / "tables" / table).read_text(), re.M)
        assert names and not [name for name in names if " " + name not in text], table


def test_desktop_entries_and_metainfo():
    linux = BUILD / "packaging/linux"
    output("desktop-file-validate", SOURCE / f"packaging/linux/{ID}.desktop", linux / f"autostart/{ID}.desktop")
    output("appstreamcli", "validate", "--no-net", linux / f"{ID}.metainfo.xml")


@pytest.fixture
def root(tmp_path):
    """Where files are installed. The lists of what is installed for real from this build are kept."""
    def lists():
        return {file: file.read_bytes() for file in BUILD.glob("install_manifest*.txt")}
    kept = lists()
    for file in kept:
        file.unlink()
    os.environ["DESTDIR"] = str(tmp_path)
    yield tmp_path
    for file in lists():
        file.unlink()
    for file, content in kept.items():
        file.write_bytes(content)


def files_in(folder):
    return [file for file in folder.rglob("*") if file.is_symlink() or not file.is_dir()]


def test_installed_files_work_from_any_folder_and_only_they_are_removed(root):
    autostart = ("--component", "autostart")
    for prefix, component in (("/opt/kest", ()), ("/opt/kest", autostart), ("/opt/second", ()), ("/opt/second", ())):
        output("cmake", "--install", BUILD, "--prefix", prefix, *component)
    kest = root / "opt/kest"
    programs = {file.name: file for file in (kest / "bin").iterdir()}
    assert programs and not set(programs) - PROGRAMS
    for name, program in programs.items():
        assert not re.search(r"R(UN)?PATH", output("readelf", "-d", program)), name
        assert (kest / f"share/man/man1/{name}.1.gz").is_file()
    expected = (root / f"etc/xdg/autostart/{ID}.desktop", root / "opt/second/bin/kest-inspect",
                *(kest / "share" / name for name in COMPLETIONS))
    assert not [file for file in expected if not file.is_file()]
    for file in files_in(root):
        content = file.read_bytes()
        named = [path for path in (SOURCE, BUILD) if b"\0" not in content and os.fsencode(path) in content]
        assert not named, f"{file} names {named}"
    output("appstreamcli", "validate-tree", "--no-net", kest)

    others = [kest / "bin/other", kest / "share/doc/kest-settings/notes"]
    for file in others:
        file.touch()
    uninstall = ("cmake", "--build", BUILD, "--target", "uninstall")
    output(*uninstall)
    assert sorted(files_in(root)) == others
    with pytest.raises(subprocess.CalledProcessError):
        output(*uninstall)  # nothing is left to remove
