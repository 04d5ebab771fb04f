/* SPDX-License-Identifier: MIT */

/* How those who wait for posts are woken, in the language of spin(1); script/model checks it. Each
 * atomic step here is one of theirs: an access to an atomic in the table, a system call, a look at
 * the clock. Every process but the watcher may be killed between any two of them.
 *
 * The checker must find what is wrong with two others: with -DUNLIMITED those who wait sleep until
 * they are woken, and a post can be lost; with -DHASTY who posts looks whether somebody waits before
 * the post is counted, and a post can be slept over though nobody died. */

/* The time, and how long a wait lasts. Beyond LAST it goes on, but is not counted. */
#define LAST 2
#define WAIT 1
byte now;

byte until;     /* the bell: until when somebody waits, 0 for nobody */
byte rings;     /* and its futex */
byte posts;

#define DAMAGED 200 /* what no wait sets */
bool wasDamaged;

bool isAsleep;  /* the watcher, in the futex, until `limit` at most */
byte limit;
byte seen;      /* how many posts it has seen */
bool isMade;    /* the post is made, and the bell rung to the end */

/* The process is killed here, or goes on. */
#define MAY_DIE                                                                                    \
    if                                                                                             \
    :: skip                                                                                        \
    :: goto dead                                                                                   \
    fi

/* Puts the end of a wait into the bell, unless somebody waits for longer. */
inline announce(end, looked) {
    looked = until;
    do
    :: looked >= end -> break
    :: else ->
       atomic {
           if
           :: until == looked -> until = end; break
           :: else -> looked = until
           fi
       }
    od
}

proctype Poster() {
    byte looked, time;
#ifdef HASTY
    looked = until;
    MAY_DIE;
    posts++;
#else
    posts++;
    MAY_DIE;
    looked = until;
#endif
    MAY_DIE;
    if
    :: looked != 0 ->
       looked = until;
       MAY_DIE;
       time = now;
       MAY_DIE;
       if
       :: looked > time && looked <= time + WAIT ->
          rings++;
          MAY_DIE;
          isAsleep = false
       :: else ->
          atomic { if :: until == looked -> until = 0 :: else fi }
       fi
    :: else
    fi;
    isMade = true;
dead:
    skip
}

/* Waits for a post of another name, once. */
proctype Waiter() {
    byte end, looked;
    end = now + WAIT;
    MAY_DIE;
    announce(end, looked);
dead:
    skip
}

/* Looks for posts for ever. */
proctype Watcher() {
    byte looked, heard;
    do
    :: limit = now + WAIT;
       announce(limit, looked);
       heard = rings;
       if
       :: atomic { posts != seen -> seen = posts }
       :: posts == seen ->
          atomic { if :: rings == heard -> isAsleep = true :: else fi };
          if
          :: !isAsleep
#ifndef UNLIMITED
          :: atomic { now >= limit || now == LAST -> isAsleep = false }
#endif
          fi
       fi
    od
}

proctype Clock() {
    do
    :: atomic { now < LAST -> now++ }
    :: now == LAST -> break
    od
}

init {
    atomic {
        if
        :: skip
        :: until = DAMAGED; wasDamaged = true
        fi;
        run Watcher();
        run Waiter();
        run Poster();
        run Clock()
    }
}

/* Every post is seen, whoever dies and whatever is in the bell. */
ltl posts_are_seen { [] ((seen != posts) -> <> (seen == posts)) }

/* Once a post has rung to the end, no sleep goes on over it that is not over by itself. */
ltl posts_wake { [] !(isMade && isAsleep && seen != posts && now < limit && !wasDamaged) }
