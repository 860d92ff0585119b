main() { ensure_packages scripts/packages.txt; }
