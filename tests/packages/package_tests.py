"""Tries the packages of what has been built. Ends with "N passed, N failed"."""

import pathlib
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path += [str(ROOT / "scripts"), str(ROOT / "packaging")]

# After their folders are known.
import archive_checks  # noqa: E402
import debian_checks  # noqa: E402
import windows_checks  # noqa: E402
from tally import Tally  # noqa: E402


def main():
    tally = Tally()
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        work.chmod(0o755)  # a plain user reads from it
        packages = archive_checks.pack_twice(tally, work)
        archive_checks.check_zip(tally, packages)
        archive_checks.check_paths(tally, packages, work)
        archive_checks.check_sums(tally, packages)
        archive_checks.check_sbom(tally, packages, work)
        archive_checks.check_signatures(tally, work)
        debian_checks.check_debian(tally, packages, work)
        debian_checks.check_fleet(tally, packages, work)
        windows_checks.check_windows(tally, packages, work)
    return tally.end()


sys.exit(main())
