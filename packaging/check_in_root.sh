# Run by check.sh as root of a bare Debian: installs the package, has a user try it, and takes it
# away again.
set -euo pipefail
cd /given

quietly_apt() { DEBIAN_FRONTEND=noninteractive apt-get -y --no-install-recommends "$@" >/dev/null; }

# What lasts is the system's file list; the packages' own book-keeping is apt's.
file_list() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /run \
        -o -path /given -o -path /home -o -path /var/cache -o -path /var/log \
        -o -path /var/lib/apt -o -path /var/lib/dpkg \) -prune -o -print | sort
}

useradd --create-home user
quietly_apt install tshark
file_list >before
quietly_apt install ./tarvelwimaxapp_*.deb
echo "checked: installed with $(dpkg-query -W -f='${Depends}' tarvelwimaxapp)"

setpriv --reuid=user --regid=user --clear-groups env HOME=/home/user bash check_as_user.sh

quietly_apt purge tarvelwimaxapp
quietly_apt autoremove --purge
file_list >after
diff before after
[ "$(dpkg-query -W -f='${Status}' tarvelwimaxapp 2>/dev/null)" != "install ok installed" ]
echo "checked: purged without a trace"
