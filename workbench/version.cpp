// Which version a library is: `strings libworkbench-int.so.1n | grep workbench-int`.
[[gnu::used]] static char const version[] = "workbench-int " WORKBENCH_INT_VERSION;
