/* SPDX-License-Identifier: MIT */

/* How processes share the table of the notification service, in the language of spin(1);
 * script/model checks it. Each atomic step here is one of theirs: an access to an atomic in the
 * table, a piece of a name, a system call. Every process but the watcher may be killed between any
 * two of them, and may stand still for ever with the lock in its hands. That those who wait are woken
 * before they look by themselves is another model, bell.pml.
 *
 * With -DWOKEN those who wait are woken by the post instead, in a step of its own, and sleep until
 * then. The checker must find that such a post can be lost. */

#define ENTRIES 3

/* The name that the watcher observes. One adder adds it too, the other adds another. */
#define OBSERVED 1
#define OTHER 2

byte seal[ENTRIES];   /* the name that an entry has, 0 while it is free */
byte first[ENTRIES];  /* the two halves of a name as it lies in the entry */
byte second[ENTRIES];
byte posts[ENTRIES];

#define NOBODY 255
byte holder = NOBODY; /* of the lock */
bool isStuck;         /* it stands still and will not give it back */

bool isWatching;      /* the watcher has registered its name, and has seen `seen` posts of it */
byte entryWatched;
byte seen;

bool isOver[5];       /* by process: it has ended, by itself or killed */

#ifdef WOKEN
bool isAsleep;
#endif

/* The process is killed here, or stands still here, or goes on. The kernel frees its lock. */
#define MAY_DIE                                                                                    \
    if                                                                                             \
    :: skip                                                                                        \
    :: atomic { holder == _pid -> holder = NOBODY; isOver[_pid] = true; goto dead }                     \
    :: atomic { holder != _pid -> isOver[_pid] = true; goto dead }                                 \
    :: atomic { holder == _pid -> isStuck = true; isOver[_pid] = true; goto dead }                 \
    fi

/* Goes through the table; ends at the entry with that name, or at the free one behind all. What it
 * reads of a sealed name is whole. */
inline search(name, index, hasName) {
    hasName = false;
    do
    :: atomic { seal[index] == 0 -> break }
    :: atomic {
           seal[index] != 0 ->
           assert(first[index] == seal[index] && second[index] == seal[index]);
           if
           :: seal[index] == name -> hasName = true; break
           :: else -> index++; assert(index < ENTRIES)
           fi
       }
    od
}

/* A lock that is not free is waited for; after some time it is done without. */
inline lock(isHeld) {
    if
    :: atomic { holder == NOBODY -> holder = _pid; isHeld = true }
    :: atomic { isStuck -> isHeld = false }
    fi
}

inline unlock() {
    atomic { assert(holder == _pid); holder = NOBODY }
}

proctype Adder(byte name) {
    byte index;
    bool hasName, isHeld;
    search(name, index, hasName);
    MAY_DIE;
    if
    :: hasName -> goto done
    :: else
    fi;
    lock(isHeld);
    if
    :: !isHeld -> goto done
    :: else
    fi;
    MAY_DIE;
    search(name, index, hasName);
    if
    :: !hasName ->
       MAY_DIE;
       first[index] = name;
       MAY_DIE;
       second[index] = name;
       MAY_DIE;
       seal[index] = name;
       MAY_DIE
    :: else
    fi;
    unlock();
done:
    isOver[_pid] = true;
dead:
    skip
}

proctype Poster() {
    byte index;
    bool hasName;
    search(OBSERVED, index, hasName);
    MAY_DIE;
    if
    :: hasName ->
       posts[index]++;
#ifdef WOKEN
       MAY_DIE;
       isAsleep = false
#endif
    :: else
    fi;
    isOver[_pid] = true;
dead:
    skip
}

/* Registers its name, if it can, and looks for posts of it for ever. */
active proctype Watcher() {
    byte index;
    bool hasName, isHeld;
    search(OBSERVED, index, hasName);
    if
    :: !hasName ->
       lock(isHeld);
       if
       :: !isHeld -> goto refused
       :: else
       fi;
       search(OBSERVED, index, hasName);
       if
       :: !hasName ->
          first[index] = OBSERVED;
          second[index] = OBSERVED;
          seal[index] = OBSERVED
       :: else
       fi;
       unlock()
    :: else
    fi;
    atomic { entryWatched = index; seen = posts[index]; isWatching = true };
end:
    do
#ifdef WOKEN
    :: atomic { posts[index] == seen -> isAsleep = true };
       !isAsleep
    :: atomic { posts[index] != seen -> seen = posts[index] }
#else
    :: atomic { posts[index] != seen -> seen = posts[index] } /* looks, after a time of its own */
#endif
    od;
refused:
    skip
}

init {
    atomic {
        run Adder(OBSERVED);
        run Adder(OTHER);
        run Poster()
    }
}

/* Every post of a name that is watched is seen. */
ltl posts_are_seen { [] ((isWatching && seen != posts[entryWatched]) ->
                         <> (seen == posts[entryWatched])) }

/* Who adds or posts comes to an end, whatever others do. That the watcher watches or is refused
 * follows from there being no other end, which is checked without any of these claims. */
ltl nobody_is_held_up { <> (isOver[2] && isOver[3] && isOver[4]) }

/* No name is there twice. */
ltl names_are_unique { [] !((seal[0] != 0 && (seal[0] == seal[1] || seal[0] == seal[2])) ||
                            (seal[1] != 0 && seal[1] == seal[2])) }
