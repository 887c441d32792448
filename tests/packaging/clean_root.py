"""A root directory that holds what a package depends on and nothing else, made of packages that are installed here.

Nothing is downloaded: the files of every package that the dependencies lead to are copied, with their entries in
dpkg's database, so that dpkg installs into the root as into a machine of its own.
"""
import pathlib
import re
import shutil
import subprocess

DATABASE = pathlib.Path("/var/lib/dpkg")


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, encoding="utf-8", check=True).stdout


def parse_stanza(text):
    fields = {}
    for line in text.splitlines():
        if not line.startswith((" ", "\t")):
            key, _, value = line.partition(":")
            fields[key] = value.strip()
    return dict(fields, text=text)


def installed_packages():
    stanzas = [parse_stanza(text) for text in (DATABASE / "status").read_text().strip().split("\n\n")]
    return [stanza for stanza in stanzas if stanza["Status"].endswith(" installed")]


def names_of(relation):
    """The package names of a dependency field: a list of lists of alternatives, versions and architectures aside."""
    return [[re.split(r"[ (:\[]", alternative.strip())[0] for alternative in group.split("|")]
            for group in relation.split(",") if group.strip()]


class Packages:
    """What is installed on this machine, and how dependencies find it."""

    def __init__(self):
        self._providers = {}
        for stanza in installed_packages():
            for group in [[stanza["Package"]]] + names_of(stanza.get("Provides", "")):
                self._providers.setdefault(group[0], []).append(stanza)

    def provider(self, alternatives, architecture):
        for name in alternatives:
            for stanza in self._providers.get(name, []):
                if stanza["Architecture"] in (architecture, "all") or stanza.get("Multi-Arch") == "foreign":
                    return stanza
        raise LookupError(f"nothing installed for {architecture} satisfies {' | '.join(alternatives)}")

    def closure(self, relation, architecture):
        """The stanzas of all that a dependency field of a package of that architecture leads to."""
        found, open_fields = {}, [(relation, architecture)]
        while open_fields:
            field, architecture = open_fields.pop()
            for alternatives in names_of(field):
                stanza = self.provider(alternatives, architecture)
                key = stanza["Package"], stanza["Architecture"]
                if key not in found:
                    found[key] = stanza
                    own = architecture if stanza["Architecture"] == "all" else stanza["Architecture"]
                    open_fields += [(stanza.get(kind, ""), own) for kind in ("Depends", "Pre-Depends")]
        return found.values()


def file_list(stanza):
    name, architecture = stanza["Package"], stanza["Architecture"]
    qualified = DATABASE / "info" / f"{name}:{architecture}.list"
    return qualified if qualified.exists() else DATABASE / "info" / f"{name}.list"


def copy_file(path, root):
    """Copies one file, link or directory (without its content); what is not there or not readable is left out."""
    target = root / path.relative_to("/")
    if path.is_symlink() or path.is_file():
        target.parent.mkdir(parents=True, exist_ok=True)
        if not target.is_symlink() and not target.exists():
            try:
                shutil.copy2(path, target, follow_symlinks=False)
            except PermissionError:
                pass
    elif path.is_dir():
        target.mkdir(parents=True, exist_ok=True)


def merge_usr(root):
    for link in (path for path in pathlib.Path("/").iterdir() if path.is_symlink()):
        (root / "usr" / link.name).mkdir(parents=True, exist_ok=True)
        (root / link.name).symlink_to(link.readlink())


def make(root, relation, architecture):
    """Fills the root with the packages that the dependency field names, and all that these need."""
    merge_usr(root)
    database = root / DATABASE.relative_to("/")
    for folder in ("info", "updates", "triggers"):
        (database / folder).mkdir(parents=True)
    native = output("dpkg", "--print-architecture").strip()
    (database / "arch").write_text("".join(f"{name}\n" for name in dict.fromkeys((native, architecture))))
    stanzas = Packages().closure(relation, architecture)
    for stanza in stanzas:
        for line in file_list(stanza).read_text().splitlines():
            copy_file(pathlib.Path(line), root)
        shutil.copy2(file_list(stanza), database / "info")
    (database / "status").write_text("\n\n".join(stanza["text"] for stanza in stanzas) + "\n")
    for folder in ("tmp", "proc", "dev", "etc", "root"):
        (root / folder).mkdir(exist_ok=True)
    (root / "root").chmod(0o700)
    (root / "etc/hosts").write_text("127.0.0.1 localhost\n")
    subprocess.run(["ldconfig", "-r", root], check=True)
