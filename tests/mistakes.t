A packager's mistakes, and what wb-trial says of them.

  $ . "$TESTDIR/site.sh"

A product without a mistake gets no warning:

  $ wb install s.toml --set WB_INTEGRATION_PATH="$PWD/workbench" | grep -c -e warning -e note -e failed || :
  0

Each mistake is named before anything is run. What is done to the session or the product:

  $ mistake() {
  >     site
  >     workbench=$PWD/workbench
  >     eval "$1"
  >     wb install s.toml --set WB_INTEGRATION_PATH="$workbench" "${@:2}" | sed -n '1,/^detect/s/^warning: //p' || :
  > }
  $ mistake : --set VORN_INSTALL_DIR='~/product'
  VORN_INSTALL_DIR is "~/product", and nothing but ${SESSION_DIR} is replaced in it; write the path out
  $ mistake : --set DEFAULT_SEARCH_PATH='/opt/a  /opt/b'
  DEFAULT_SEARCH_PATH has two blanks in a row, or begins with one; that is an empty directory, in which /install.properties would count; write single blanks
  $ mistake 'workbench=workbench'
  "workbench" is relative: the integration can be undone from this folder only; write it from the root
  $ mistake : --set VORN_INSTALL_SUBDIR=suite
  VORN_INSTALL_DIR and VORN_INSTALL_SUBDIR make "./productsuite", which is not there; is a slash missing before "suite"? Only for the location in preferences files a slash is put there.
  $ mistake 'sed -i s,/suite/part,/part, s.toml'
  VORN_INSTALL_DIR and subdir make "./product/part", which is not there; is it misspelt?
  $ mistake : --set VORN_INSTALL_DIR=/absent
  VORN_INSTALL_DIR is "/absent", which is not there
  $ mistake : --set log_file=absent/log
  there is no folder "./absent" for the log; make it
  $ mistake 'sed -i s/workbench-part/PD-Workbench/ s.toml'
  no component to be installed has "workbench" in its name: "PD-Workbench" (differs in case only)
  $ mistake 'sed -i "s/files_from = .*}/install_condition = false }/" s.toml' --set WB_PREFS=
  no component to be installed has "workbench" in its name: none is to be installed
  $ mistake 'sed -i s/off-workbench.*false/a-workbench\"/ s.toml'
  several components have "workbench" in their names; the first one counts, "a-workbench"
  the listed path "share/wr-qev-1.0a/readme.txt" decides that the configuration is "wr-qev-1.0a", and there is no such directory in "./product"; its name has to be wr-qev- and four characters, its files listed first
  $ mistake 'sed -i "s/, files = .*/ }]/" s.toml' --set WB_PREFS=
  no listed path contains "wr-qev-", so there is no configuration
  $ mistake 'mv $config ${config}b; sed -i "s/wr-qev-1.0a/wr-qev-1.0ab/" s.toml'
  the listed path "share/wr-qev-1.0ab/readme.txt" decides that the configuration is "wr-qev-1.0a", and there is no such directory in "./product/suite/part"; its name has to be wr-qev- and four characters, its files listed first
  $ mistake 'mv $config ${config%a}; sed -i "s/wr-qev-1.0a/wr-qev-1.0/" s.toml'
  the configuration is "wr-qev-1.0"; its name has to be wr-qev- and four characters, for what follows can become part of it
  $ mistake : --set WORKBENCH_SCRIPT_NAME=setup.sh
  there is no "setup.sh.sh" in "./product/suite/part/wr-qev-1.0a/wr-setup/", but "setup.sh", "uninst_wr_qev.sh"; WORKBENCH_SCRIPT_NAME has to be the name of one of them, written without .sh
  $ mistake : --set WORKBENCH_SCRIPT_NAME=
  there is no ".sh" in "./product/suite/part/wr-qev-1.0a/wr-setup/", but "setup.sh", "uninst_wr_qev.sh"; WORKBENCH_SCRIPT_NAME is not set
  $ mistake 'rm -r $uninstall product/suite/vorn'
  there is no "./product/suite/vorn" for the de-integration script; the product has to bring that folder
  there is no "uninst_wr_qev.sh" in "./product/suite/part/wr-qev-1.0a/wr-setup/", but "setup.sh"; without it, nothing undoes what the setup script does
  $ mistake 'chmod -x $setup'
  "./product/suite/part/wr-qev-1.0a/wr-setup/setup.sh" is not executable; chmod +x it
  $ mistake 'sed -i 1d $setup'
  $ mistake 'sed -i "s/$/\r/" $setup'
  "./product/suite/part/wr-qev-1.0a/wr-setup/setup.sh" has lines that end in a carriage return; save it with the line ends of Unix
  $ mistake 'sed -i "1s|.*|#!/opt/absent/bash -e|" $config/wr-setup/uninst*'
  "./product/suite/part/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" names "/opt/absent/bash" in its first line, which is not there
  $ mistake 'sed -i "1s|.*|#!/usr/bin/env absent|" $setup; sed -i "1s|.*|#!/usr/bin/env -S sh|" $uninstall'
  "./product/suite/part/wr-qev-1.0a/wr-setup/setup.sh" names "absent" in its first line, which no directory in PATH has
  $ mistake : --set WB_PREFS=.ini
  no listed path contains ".ini", the text in WB_PREFS
  $ mistake 'sed -i s,product/suite\",product\", s.toml'
  there is no preferences file "./product/suite/suite/part/wr-qev-1.0a/a.prefs", which the listed path "suite/part/wr-qev-1.0a/a.prefs" makes; it has to be listed by its path in VORN_INSTALL_DIR and VORN_INSTALL_SUBDIR
  $ mistake 'mkdir $copy; touch $copy/other'
  "./workbench/wr-qev-1.0a" is there, and not by this product, for no script of it names that. If it is another product's, the next uninstall would remove both; give yours a name of its own. If an earlier try left it, remove it
  $ mistake 'integrate >/dev/null; mv $copy ${copy}2; sed -i s/1.0a/1.0a2/ $script'
  this product is integrated as "workbench/wr-qev-1.0a2"; uninstall that first, for its de-integration script will be replaced

Where there is no workbench that can be used:

  $ stopped() {
  >     wb install s.toml "$@" | sed -n '/^Stopped/p; /^Stopped/,$s/returned/was called/p'
  >     echo "status ${PIPESTATUS[0]}" | sed '/status 1$/d'
  > }
  $ echo '#hostname=1 name=3.1 name = 4' >workbench/install.properties
  $ stopped --set WB_INTEGRATION_PATH=workbench --set SUPPORTED_VERSION='2;3.2;3.1'
  Stopped: "workbench" is of no supported version: looked for "name=2", "name=3.2", and its install.properties has "#hostname=1", "name=3.1"; end each version in SUPPORTED_VERSION by ";", without blanks.
  $ echo '#hostname' >workbench/install.properties
  $ stopped --set WB_INTEGRATION_PATH=workbench --set SUPPORTED_VERSION='3.1;'
  Stopped: "workbench" is of no supported version: looked for "name=3.1", and its install.properties has no word with "name=".
  $ stopped --set WB_INTEGRATION_PATH=workbench --set SUPPORTED_VERSION='3.1'
  Stopped: "workbench" is of no supported version: no version in SUPPORTED_VERSION is complete, and its install.properties has no word with "name="; end each version in SUPPORTED_VERSION by ";", without blanks.
  $ stopped --set WB_INTEGRATION_PATH=workbench --set SUPPORTED_VERSION=
  Stopped: SUPPORTED_VERSION is empty.
  $ stopped --set WB_INTEGRATION_PATH=product
  Stopped: "product" holds no file install.properties.
  $ stopped --set DEFAULT_SEARCH_PATH='/opt/my bench'
  Stopped: no directory in DEFAULT_SEARCH_PATH holds a file install.properties; tried: "/opt/my", "bench".

A run that fails ends with all that failed. What only follows from a failure is none of its own:

  $ site; rm -r $config
  $ wb check --no-sandbox s.toml --set WB_INTEGRATION_PATH=workbench | sed -n '/ failure/,$p'
  1 failure:
    perform_integration: dir_copy("./product/suite/part/wr-qev-1.0a", "workbench/wr-qev-1.0a") failed: No such file or directory: "./product/suite/part/wr-qev-1.0a"
  [1]
  $ site; sed -i "s/, files = .*/ }]/" s.toml
  $ wb check --no-sandbox s.toml --set WB_INTEGRATION_PATH=workbench --set WB_PREFS= | sed -n '/ failure/,$p'
  1 failure:
    perform_integration: no listed path holds a configuration, "wr-qev-" and a name without ".."
  [1]
  $ site; sed -i s/workbench-part/part/ s.toml
  $ wb check --no-sandbox s.toml --set WB_INTEGRATION_PATH=workbench | sed -n '/ failure/,$p'
  1 failure:
    check: nothing was checked, for nothing was integrated
  [1]

Names that are not known, and a library that cannot be used; nothing is run:

  $ refused chek s.toml
  wb-trial: unknown command chek; did you mean check?
  $ refused s.toml
  wb-trial: unknown command s.toml; known are "check", "install", "uninstall", "run"
  $ refused install s.toml --set WB_INTEGRATION_DIR=workbench
  wb-trial: --set: unknown variable WB_INTEGRATION_DIR; did you mean WB_INTEGRATION_PATH?
  $ echo 'WORKBENCH_SCRIPT = "setup"' >>s.toml; refused install s.toml
  wb-trial: s.toml:14: unknown variable WORKBENCH_SCRIPT; did you mean WORKBENCH_SCRIPT_NAME?
  $ refused install s.toml --plugin ''
  --plugin: the name is empty
