A check says the same of a product with and without a sandbox, to root and to an ordinary user.

  $ [ -e /proc/self ] || exit 80
  $ . "$TESTDIR/site.sh"
  $ . "$TESTDIR/users.sh"

What a check without a sandbox says first and last. It leaves what it did, and no copies:

  $ lay 'echo >x'
  $ wb check --no-sandbox s.toml --set WB_INTEGRATION_PATH=workbench | sed -n '1p; /^left/,$p'
  The disk changes: this check really installs and uninstalls.
  left by the uninstall:
    A ./product/suite/vorn/wb_deintegrate.sh
    A ./workbench/x
  failed: the uninstall leaves the workbench changed
  What the last list shows is left on the disk. Nothing beside the workbench and the product was compared.
  1 failure:
    check: the uninstall leaves the workbench changed
  [1]
  $ ls workbench; ls "$TMPDIR"
  dir
  install.properties
  x

  $ TMPDIR=workbench wb check --no-sandbox s.toml --set WB_INTEGRATION_PATH=workbench
  wb-trial: TMPDIR has to lie outside of the workbench and the product, for it gets copies of them
  [2]

Setup script, uninstall script, verdict:

  $ both_ways 'mkdir x; echo >x/y' 'rm -r x'
  The workbench is as it was. status 0
  $ both_ways 'chmod 700 . dir' 'chmod 755 . dir; rm dir/file; touch dir/file'
  The workbench is as it was. status 0
  $ both_ways 'chmod 600 dir' 'chmod 700 dir; chmod 755 dir'
  The workbench is as it was. status 0
  $ both_ways 'echo nane=3.1 >install.properties' :
  1 failure: check: the uninstall leaves the workbench changed status 1
  $ both_ways 'chmod g+s dir; chmod +t dir; chmod u+s dir/file' 'chmod g-s dir; chmod -t dir'
  1 failure: check: the uninstall leaves the workbench changed status 1
  $ both_ways 'setfattr -n user.color -v red dir/file' :
  1 failure: check: the uninstall leaves the workbench changed status 1
  $ both_ways : 'rm -r dir install.properties'
  1 failure: check: the uninstall leaves the workbench changed status 1
  $ both_ways '(sleep 99 & echo $! >p) >/dev/null 2>&1' 'kill $(cat p); while kill -0 $(cat p) 2>/dev/null; do sleep 0.01; done; rm p'
  The workbench is as it was. status 0
  $ both_ways 'sleep 0.5 >/dev/null 2>&1 &' :
  The workbench is as it was. status 0
  $ both_ways 'sleep 9 >/dev/null 2>&1 &' :
  The workbench is as it was. 1 failure: check: still running after the uninstall: sleep 9 status 1

The product gets its de-integration script and the text of preferences files, and nothing else without a note:

  $ in_product() {
  >     lay "$1"
  >     touch product/suite/file "$prefs"
  >     judge
  > }
  $ in_product :
  The workbench is as it was. status 0
  $ in_product 'echo >>../product/suite/file'
  The workbench is as it was. note: the uninstall leaves the product changed, and not only its de-integration script and preferences files status 0
  $ in_product 'chmod 600 "../$prefs"'
  The workbench is as it was. note: the uninstall leaves the product changed, and not only its de-integration script and preferences files status 0

An earlier integration is not touched, and leaves no verdict; an empty directory of that name is none:

  $ lay :; mkdir "$copy"; judge
  1 failure: check: the uninstall leaves the workbench changed status 1
  $ lay :; integrate >/dev/null; keep; judge; kept
  wb-trial: the workbench holds an earlier integration already, "workbench/wr-qev-1.0a"; uninstall that first, then check again status 2
  $ lay :; mkdir "$copy"; touch "$copy/other"; judge
  wb-trial: "workbench/wr-qev-1.0a" is there, and not by this product, for no script of it names that. If it is another product's, the next uninstall would remove both; give yours a name of its own. If an earlier try left it, remove it status 2

Where workbench and product lie in each other:

  $ lay 'echo >x'; mv workbench product; workbench=product/workbench; judge
  1 failure: check: the uninstall leaves the workbench changed status 1
  $ inside() {
  >     lay "$1"
  >     mv product workbench
  >     sed -i 's|DIR}/product|DIR}/workbench/product|' s.toml
  >     judge
  > }
  $ inside 'echo >x'
  1 failure: check: the uninstall leaves the workbench changed status 1
  $ inside 'echo >product/x'
  The workbench is as it was. note: the uninstall leaves the product changed, and not only its de-integration script and preferences files status 0
