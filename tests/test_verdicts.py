"""Whether the workbench is as it was after an install and an uninstall, told by every way to check."""

from conftest import table


@table(
    "setup, uninstall, verdict",
    {
        "what was added is removed": ("mkdir x; echo >x/y", "rm -r x", "as it was"),
        "more is removed": (":", "rm -r dir", "changed"),
    },
)
def test_verdict(site, way, setup, uninstall, verdict):
    site.lay(setup, uninstall)
    report = way(site)
    assert report.verdict == verdict, report.text
    assert report.status == (verdict != "as it was")
